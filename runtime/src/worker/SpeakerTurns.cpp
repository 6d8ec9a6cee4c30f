#include "worker/SpeakerTurns.h"

namespace engine {

std::vector<Turn> speakerTurns(const QString &recording, const std::vector<Segment> &segments,
                               const QString &workFolder, const std::function<void()> &check,
                               const SpeakerFinder::Show &show)
{
    // Hearing all of it, learning from it, and hearing it again take about as long as each other.
    int step = 0;
    const auto showStep = [&](double share) { show((step + share) / 3); };
    const auto hearAll = [&](const auto &take) {
        SegmentSound sound(recording, check);
        std::vector<int16_t> samples;
        for (size_t i = 0; i < segments.size(); ++i) {
            showStep(double(i) / double(segments.size()));
            if (segments[i].text().isEmpty())
                continue;
            samples.clear();
            sound.append(samples, segments[i]);
            take(segments[i], samples);
        }
        ++step;
    };
    SpeakerFinder finder(check, workFolder);
    std::vector<Turn> turns;
    hearAll([&](const Segment &, const std::vector<int16_t> &samples) { finder.hear(samples); });
    finder.learn(showStep);
    ++step;
    hearAll([&](const Segment &segment, const std::vector<int16_t> &samples) {
        const std::vector<Turn> found = finder.turns(segment.startMs, samples);
        turns.insert(turns.end(), found.begin(), found.end());
    });
    show(1);
    return turns;
}

} // namespace engine
