#include "app/StartRecord.h"

#include "engine/Stages.h"

#include <QSet>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

/// A job that is not known and may be that file's: one under way still has the file's title, so that another title tells
/// the job of somebody else's start.
bool hasJobBeyond(const QStringList &knownJobs, const QString &title, const JobList &jobs)
{
    const QSet<QString> known(knownJobs.begin(), knownJobs.end());
    for (qsizetype index = 0; index < jobs.size(); ++index) {
        const bool isOurs = !IsActiveStage(jobs.statusAt(index)) || jobs.titleAt(index) == title;
        if (isOurs && !known.contains(jobs.idAt(index)))
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
    return stored;
}

std::optional<StartRecord> RestoredStart(const QVariant &stored)
{
    const QVariantMap record = stored.toMap();
    if (record.value(u"path"_s).toString().isEmpty())
        return std::nullopt;
    StartRecord start{EntryFromStored(record), std::nullopt};
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
    if (record.knownJobs && hasJobBeyond(*record.knownJobs, TitleOfFile(WaitingPath(record.entry)), history.entries))
        return StartFate::Taken;
    return commandEnded ? StartFate::NotTaken : StartFate::Unknown;
}

} // namespace tuppi
