#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace tuppi {

/// One form in which a transcript leaves the application.
struct ExportFormat
{
    QString key;    ///< as the defaults store keeps it
    QString title;  ///< English; looked up where it is shown
    QString file;   ///< the engine's name of the file
};

/// Every form, in the order of the Format pop-up.
const QList<ExportFormat> &ExportFormats();

/// The transcript's text in that form, or in the next best one where its file is missing, unreadable or empty;
/// nothing when no file has a text. A summary comes without its front matter. Reads files: not for a list.
std::optional<QString> TextForDir(const QString &callDir, const QString &format);

/// The title of the first of these history entries that has the call dir (nothing when it has none); without
/// such an entry the folder's own name.
std::optional<QString> TitleForDir(const QList<QJsonObject> &history, const QString &callDir);

/// The name under which a transcript of that title is saved.
QString SafeFileName(const QString &title);

/// The text without the front matter that a summary begins with, if it is closed.
QString WithoutFrontMatter(const QString &text);

} // namespace tuppi
