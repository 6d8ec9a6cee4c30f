#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

/// The arguments of every command that the application gives the engine. Each function returns the list that
/// follows the engine's path; the order is fixed. IDs are the engine's own job identifiers.
namespace tuppi::command {

/// Limit of the two queries of a poll, in seconds. No other command has one.
inline constexpr double queryTimeoutSeconds = 60;

QStringList resume();
QStringList history();
QStringList status();

/// Hands a waiting entry (keys: url, engine, language, speakers, quick) over.
QStringList process(const QVariantMap &waitingEntry);

QStringList models();
QStringList addModel(const QString &name, const QString &kind, const QString &repo);
QStringList removeModel(const QString &modelId);
QStringList useTextModel(const QString &name);

QStringList settings();
QStringList setLibrary(const QString &path);
QStringList doctor();

QStringList copyTranscript(const QString &id);
QStringList rename(const QString &id, const QString &title);
QStringList pause(const QString &id);
QStringList resumeJob(const QString &id);
QStringList cancel(const QString &id);
QStringList retry(const QString &id);
QStringList hide(const QStringList &ids);
QStringList unhideAll();

QStringList renameSpeaker(const QString &id, const QString &oldName, const QString &newName);
/// Lines and positions are numbers as a viewer page gave them, in whatever form: the engine judges them.
/// Sets one line's speaker (an empty name is a name), or clears it without one.
QStringList setLineSpeaker(const QString &id, double line, const std::optional<QString> &name);
QStringList editLine(const QString &id, double line, const QString &text);
/// `position` counts the characters of the line before the cut.
QStringList splitLine(const QString &id, double line, double position);
QStringList joinWithLineAbove(const QString &id, double line);

} // namespace tuppi::command
