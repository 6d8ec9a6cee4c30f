#pragma once

#include "store/Job.h"
#include "store/Segments.h"
#include "text/CleanText.h"
#include "text/Summary.h"

#include <optional>

namespace engine {

// Writes every text file of the job's call dir, each beside and renamed, all synced at the end. Without a
// summary there is no summary file. Throws Failure.
void writeCallDir(const Job &job, const std::vector<Segment> &segments, const QString &cleanText,
                  const std::optional<Summary> &summary);

} // namespace engine
