#pragma once

#include <QList>
#include <QString>

namespace tuppi {

/// What the desktop can do with a file that is to be handed on.
struct ShareOffers
{
    bool email = false;      ///< write a message with the file attached
    bool chooser = false;    ///< let the person choose a program to open it with
    bool openers = false;    ///< open it with the usual program for its kind

    bool operator==(const ShareOffers &) const = default;
};

enum class ShareChoice { Email, OpenWith, Open, CopyFile, Reveal };

/// The items of the sharing menu, in their order: only those that will work here.
QList<ShareChoice> ShareChoices(const ShareOffers &offers);

/// The title of an item in the interface language.
QString ShareTitle(ShareChoice choice);

} // namespace tuppi
