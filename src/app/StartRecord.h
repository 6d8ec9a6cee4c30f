#pragma once

#include "app/WaitingQueue.h"
#include "engine/EngineReplies.h"

#include <QVariantMap>

#include <optional>

namespace tuppi {

/// A file that was being handed to the engine, and the jobs known before it. Kept beside the queue from the
/// moment the file leaves it until the engine has answered, so that a crash in between loses no file and
/// starts none twice.
struct StartRecord
{
    WaitingEntry entry;
    /// Ids of the jobs known before the start; none when the engine had given no usable history yet.
    std::optional<QStringList> knownJobs;
    qint64 startedAt = 0; ///< seconds since 1970; 0 when an earlier version has not kept it
};

QVariantMap StoredStart(const StartRecord &record);
/// Nothing when the stored value is no such record.
std::optional<StartRecord> RestoredStart(const QVariant &stored);

QStringList JobIds(const History &history);

/// What became of a start that a crash interrupted.
enum class StartFate {
    Unknown,   ///< the command may still be at work: ask again
    Taken,     ///< the history shows a job beyond the known ones that has the file's title or its folder
    NotTaken,  ///< no such job, and nobody is at work on one: the file goes back to the queue
};

/// `commandEnded`: the interrupted command was seen to have ended before this history was asked for. A
/// history older than the command's end proves nothing by lacking the job.
StartFate FateOfStart(const StartRecord &record, const History &history, bool commandEnded);

} // namespace tuppi
