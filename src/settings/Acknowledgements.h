#pragma once

#include <QList>
#include <QString>

namespace tuppi {

/// A model or tool that is thanked. Texts are English; component and note are looked up when they are shown.
struct Acknowledgement
{
    QString component;
    QString holder;
    QString licence;
    QString link;  ///< the project's public page
    QString note;  ///< may be empty
};

/// In the order in which they are shown.
const QList<Acknowledgement> &Acknowledgements();

/// Address of a licence's published text.
QString LicenceLink(const QString &licence);

/// What the About window says below the version: one text of paragraphs.
QString AboutCredits();
/// What this build itself is made of.
QString AboutBuild();

} // namespace tuppi
