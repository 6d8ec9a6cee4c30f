#include "worker/SpeakerTurns.h"

namespace engine {

std::vector<Turn> speakerTurns(const QString &recording, const std::vector<Segment> &segments,
                               const QString &workFolder, const std::function<void()> &check,
                               const std::function<void(size_t handled, size_t all)> &show)
{
    SpeakerFinder finder(check, workFolder);
    std::vector<int16_t> samples;
    std::vector<Turn> turns;
    size_t handled = 0;
    for (const bool learning : {true, false}) {
        SegmentSound sound(recording, check);
        for (const Segment &segment : segments) {
            ++handled;
            if (segment.text().isEmpty())
                continue;
            samples.clear();
            sound.append(samples, segment);
            if (learning) {
                finder.hear(samples);
            } else {
                const std::vector<Turn> found = finder.turns(segment.startMs, samples);
                turns.insert(turns.end(), found.begin(), found.end());
            }
            show(handled, 2 * segments.size());
        }
        if (learning)
            finder.learn();
    }
    return turns;
}

} // namespace engine
