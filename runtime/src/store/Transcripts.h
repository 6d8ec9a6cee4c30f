#pragma once

#include "store/Database.h"
#include "store/Job.h"
#include "text/Transcript.h"

#include <optional>
#include <vector>

namespace engine {

// Transcripts as the store keeps them. What writes belongs inside the caller's transaction. All throw
// Failure.

// Nothing while the job has none: until it is ready, or since a version of the store that kept none.
std::optional<Transcript> keptTranscript(Database &database, qint64 job);

// Keeps the transcript. Lines that are the same in `before`, which the store holds, are not written again.
void keepTranscript(Database &database, qint64 job, const Transcript &transcript,
                    const std::vector<Line> &before = {});

// The revision that the files in the call dir show, and the jobs whose files lag behind.
void noteWritten(Database &database, qint64 job, int revision);
std::vector<qint64> unwrittenJobs(Database &database);

} // namespace engine
