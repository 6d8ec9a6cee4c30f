#pragma once

#include "speakers/SpeakerFinder.h"
#include "text/Segment.h"

#include <vector>

namespace engine {

// The segments, cut between words where the voice changes, each part with the name of its speaker: "Speaker 1"
// is the first to say a word. The first part begins and the last part ends where the segment did. Without
// turns, and where no word is, nothing changes. Parts are numbered anew.
std::vector<Segment> cutBySpeaker(std::vector<Segment> segments, const std::vector<Turn> &turns);

} // namespace engine
