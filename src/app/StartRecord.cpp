#include "app/StartRecord.h"

#include "engine/Stages.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

/// The engine names a call dir after time and file when it takes the file, and the dir keeps that name whatever the
/// transcript is called later. Where it names them otherwise, none is recognised.
bool isDirOfFile(const QString &callDir, const QString &path)
{
    static const QRegularExpression time(u"^\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d "_s);
    static const QRegularExpression number(u" \\(\\d+\\)$"_s);
    const QString name = QDir(callDir).dirName().remove(time);
    // A file's name may itself end like the number of a folder.
    return IsTitleOfFile(name, path) || IsTitleOfFile(QString(name).remove(number), path);
}

/// Whether a job may be of that start: it has its file's title, which only a transcript that is ready may have changed,
/// and did not end before the start.
bool mayBeOf(const StartRecord &record, const JobList &jobs, qsizetype index)
{
    const QString path = WaitingPath(record.entry);
    const QString status = jobs.statusAt(index);
    const qint64 completedAt = jobs.noteAt(index).completedAt;
    if (!IsActiveStage(status) && completedAt != JobNote::unknownTime && completedAt / 1000 < record.startedAt)
        return false;
    return IsTitleOfFile(jobs.titleAt(index), path)
        || (status == "ready"_L1 && isDirOfFile(jobs.at(index).value("call_dir"_L1).toString(), path));
}

/// A job that was not known before the start and may be of it.
bool hasJobBeyond(const StartRecord &record, const JobList &jobs)
{
    const QSet<QString> known(record.knownJobs->begin(), record.knownJobs->end());
    for (qsizetype index = 0; index < jobs.size(); ++index) {
        if (!known.contains(jobs.idAt(index)) && mayBeOf(record, jobs, index))
            return true;
    }
    return false;
}

} // namespace

QVariantMap StoredStart(const StartRecord &record)
{
    QVariantMap stored = StoredEntry(record.entry);
    if (record.knownJobs)
        stored.insert(u"knownJobs"_s, *record.knownJobs);
    if (record.startedAt != 0)
        stored.insert(u"startedAt"_s, record.startedAt);
    return stored;
}

std::optional<StartRecord> RestoredStart(const QVariant &stored)
{
    const QVariantMap record = stored.toMap();
    if (record.value(u"path"_s).toString().isEmpty())
        return std::nullopt;
    StartRecord start{EntryFromStored(record), std::nullopt, record.value(u"startedAt"_s).toLongLong()};
    if (record.contains(u"knownJobs"_s))
        start.knownJobs = record.value(u"knownJobs"_s).toStringList();
    return start;
}

QStringList JobIds(const History &history)
{
    QStringList ids;
    ids.reserve(history.entries.size());
    for (qsizetype index = 0; index < history.entries.size(); ++index)
        ids.append(history.entries.idAt(index));
    return ids;
}

StartFate FateOfStart(const StartRecord &record, const History &history, bool commandEnded)
{
    // A file transcribed twice is a smaller harm than one that is lost: without a list to compare with it goes back too.
    if (record.knownJobs && hasJobBeyond(record, history.entries))
        return StartFate::Taken;
    return commandEnded ? StartFate::NotTaken : StartFate::Unknown;
}

} // namespace tuppi
