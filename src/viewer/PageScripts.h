#pragma once

#include <QHash>
#include <QJsonValue>
#include <QString>

/// The scripts that the application runs in a viewer page.
namespace tuppi {

/// An array or an object as a JavaScript expression; nothing in its texts can end it early.
QString ScriptText(const QJsonValue &value);

/// Whether an interface in that language runs from right to left.
bool IsRightToLeft(const QString &language);
/// Whether most letters of a text (of its first ten thousand characters) belong to scripts that run from right to left.
bool RunsFromTheRight(QStringView text);

/// Hands the page its translations (English text to text) and its direction; runs before the page's own.
QString viewerI18nScript(const QHash<QString, QString> &texts, const QString &language);

/// Makes the page begin with its summary; runs before the page's own.
QString BeginWithSummaryScript();

/// Shows one of the two tabs of a page that is open.
QString ShowTabScript(bool summary);

/// Stops whatever the page plays.
QString PauseScript();

/// Its value has what was written in each correction that is not saved yet (`unsaved`), and in each that failed and that
/// the page still offers (`failed`). With `endsEdit` it ends an open edit first.
QString UnsavedScript(bool endsEdit);

/// Its value has the second of these alone.
QString FailedScript();

} // namespace tuppi
