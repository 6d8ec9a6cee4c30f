#include "app/StartRecord.h"

#include "engine/Stages.h"

#include <QSet>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

/// Whether a job may be of that start. One under way still has its file's title; one that has ended may have got
/// another, but did not end before the start.
bool mayBeOf(const StartRecord &record, const JobList &jobs, qsizetype index)
{
    if (IsActiveStage(jobs.statusAt(index)))
        return IsTitleOfFile(jobs.titleAt(index), WaitingPath(record.entry));
    const qint64 completedAt = jobs.noteAt(index).completedAt;
    return completedAt == JobNote::unknownTime || completedAt / 1000 >= record.startedAt;
}

/// A job that was not known before the start and may be of it.
bool hasJobBeyond(const StartRecord &record, const JobList &jobs)
{
    const QSet<QString> known(record.knownJobs->begin(), record.knownJobs->end());
    for (qsizetype index = 0; index < jobs.size(); ++index) {
        if (mayBeOf(record, jobs, index) && !known.contains(jobs.idAt(index)))
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
    // Without a list to compare with, a file transcribed twice is the smaller harm.
    if (record.knownJobs && hasJobBeyond(record, history.entries))
        return StartFate::Taken;
    return commandEnded ? StartFate::NotTaken : StartFate::Unknown;
}

} // namespace tuppi
