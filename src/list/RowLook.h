#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>

namespace tuppi {

/// Looks an English text up in the interface language.
using Localise = std::function<QString(const QString &)>;

enum class DetailTone { Slate, Good, Attention };

/// One button of a row. A button with a symbol shows that and has its tip; any other shows its title.
struct RowButton
{
    QString action; ///< the name of the command, as `pauseRow`
    QString title;
    QString symbol;
    QString tip;
    int style = 1; ///< of the pill
    QString accessibleName;

    bool operator==(const RowButton &) const = default;
};

/// Everything that one row of the list shows, as plain data.
struct RowLook
{
    QString key;
    QString title;
    QString detail;
    DetailTone tone = DetailTone::Slate;
    QString detailTip;
    double progress = -2; ///< -2 no bar; any other negative value a running bar; 0 and above a fraction
    QString pose;
    bool animated = false;
    QString mascotKey; ///< under which an animated mascot is kept between reloads
    QList<RowButton> buttons;
    bool activeCard = false;
    bool selected = false; ///< the view's own state: the rule leaves it false
    bool focused = false;  ///< so is this: selected, and the list's keys are meant for it
    QString accessibleName;

    bool hasBar() const { return progress > -2; }
    bool operator==(const RowLook &) const = default;
};

/// The row as it is to be shown. The key, the detail line and the progress number come from their own rules.
RowLook RowLookFor(const QJsonObject &row, const QString &key, const QString &detail, double progress,
                   const Localise &localise);

/// The colour of the detail line for a status.
DetailTone DetailToneFor(const QString &status);

/// The key under which the animated mascot of a row is kept: the job's id, or the place and title of a
/// waiting file, and the pose.
QString MascotKey(const QJsonObject &row, const QString &pose);

} // namespace tuppi
