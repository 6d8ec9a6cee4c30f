#pragma once

#include "speakers/Moments.h"

#include <functional>
#include <vector>

namespace engine {

// Columns from `first` to before `end`.
struct Run
{
    int first = 0;
    int end = 0;

    int length() const { return end - first; }
    bool operator==(const Run &) const = default;
};

// Cuts frames where the voice changes. No run is shorter than `least` frames, unless all of them are fewer.
std::vector<Run> homogeneousRuns(const Cepstra &frames, const VoiceMeasure &measure, int least);

// Joins what sounds alike, the most alike first, until all that is left sounds like different voices. Gives
// the number of its group for each item; groups are numbered from 0 in the order of their first item. Calls
// `check` again and again, which may throw. Memory and time grow with the square of the number of items.
std::vector<int> groupsByVoice(std::vector<Moments> items, const VoiceMeasure &measure,
                               const std::function<void()> &check);

} // namespace engine
