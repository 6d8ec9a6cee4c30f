#pragma once

#include "speakers/SpeakerFinder.h"
#include "worker/SegmentSound.h"

#include <functional>

namespace engine {

// Who speaks where in the segments of a recording. Nothing of it is kept: after a kill it is found again, and is the
// same. `check` is as that of SegmentSound. Throws Failure.
std::vector<Turn> speakerTurns(const QString &recording, const std::vector<Segment> &segments,
                               const QString &workFolder, const std::function<void()> &check,
                               const SpeakerFinder::Show &show);

} // namespace engine
