#include "speakers/SpeakerFinder.h"

#include "speakers/VoicePath.h"

#include <algorithm>

namespace engine {

namespace {

// Frames are 10 ms each; those of pauses do not count.
constexpr Eigen::Index mostFrames = 300000; // kept to learn from
constexpr Eigen::Index mostTrained = 30000; // of each voice
constexpr Eigen::Index leastOfSpeaker = 300;
constexpr int leastRun = 50;
constexpr int leastTurn = 60;

// Found by trial on recordings whose speakers are known; benchmarks/engine/speakers measures them.
constexpr double cutStrictness = 1.0;
constexpr double groupStrictness = 1.8;
constexpr double changeCost = 30;
constexpr int rounds = 3;
constexpr Eigen::Index framesPerComponent = 300;
constexpr int mostComponents = 16;

} // namespace

SpeakerFinder::SpeakerFinder(std::function<void()> check, const QString &folder)
    : m_check(std::move(check))
    , m_aside(folder)
{
}

void SpeakerFinder::hear(std::span<const int16_t> samples)
{
    m_check();
    if (m_heard++ % m_everyNth != 0)
        return;
    const VoicedFrames frames = m_source.voiced(samples);
    if (frames.count() == 0)
        return;
    m_frames += frames.count();
    m_pieces.push_back({m_aside.append(frames.cepstra), std::vector<int16_t>(frames.at.size(), 0)});
    if (m_frames > mostFrames)
        thinOut();
}

void SpeakerFinder::thinOut()
{
    std::vector<Piece> kept;
    m_frames = 0;
    for (size_t i = 0; i < m_pieces.size(); i += 2) {
        m_frames += m_pieces[i].cepstra.frames;
        kept.push_back(std::move(m_pieces[i]));
    }
    m_pieces = std::move(kept);
    m_everyNth *= 2;
}

VoiceMeasure SpeakerFinder::measureOf(double strictness) const
{
    Moments all;
    for (const Piece &piece : m_pieces)
        all.add(m_aside.read(piece.cepstra));
    return {all.covariance(), strictness};
}

// First guess: runs of one voice, and which of them sound alike.
void SpeakerFinder::groupRuns(const Show &show)
{
    struct Place
    {
        size_t piece = 0;
        Run run;
    };
    const VoiceMeasure cutting = measureOf(cutStrictness);
    std::vector<Place> places;
    std::vector<Moments> items;
    for (size_t i = 0; i < m_pieces.size(); ++i) {
        m_check();
        show(double(i) / double(m_pieces.size()));
        const Cepstra cepstra = m_aside.read(m_pieces[i].cepstra);
        for (const Run run : homogeneousRuns(cepstra, cutting, leastRun)) {
            places.push_back({i, run});
            items.emplace_back().add(cepstra.middleCols(run.first, run.length()));
        }
    }
    const std::vector<int> groups = groupsByVoice(std::move(items), {cutting.usual, groupStrictness}, m_check);
    for (size_t i = 0; i < places.size(); ++i) {
        const auto start = m_pieces[places[i].piece].speaker.begin();
        std::fill(start + places[i].run.first, start + places[i].run.end, int16_t(groups[i]));
    }
}

// Speakers that sound alike after all become one; tells whether there were any.
bool SpeakerFinder::groupSpeakers()
{
    auto items = std::vector<Moments>(size_t(speakerCount()));
    for (const Piece &piece : m_pieces) {
        const Cepstra cepstra = m_aside.read(piece.cepstra);
        for (size_t i = 0; i < piece.speaker.size(); ++i)
            items[size_t(piece.speaker[i])].add(cepstra.col(Eigen::Index(i)));
    }
    const size_t before = items.size();
    const std::vector<int> groups = groupsByVoice(std::move(items), measureOf(groupStrictness), m_check);
    for (Piece &piece : m_pieces) {
        for (int16_t &speaker : piece.speaker)
            speaker = int16_t(groups[size_t(speaker)]);
    }
    return size_t(std::ranges::max(groups)) + 1 < before;
}

int SpeakerFinder::speakerCount() const
{
    int highest = -1;
    for (const Piece &piece : m_pieces)
        highest = std::max<int>(highest, std::ranges::max(piece.speaker));
    return highest + 1;
}

Eigen::Index SpeakerFinder::framesOf(int speaker) const
{
    Eigen::Index count = 0;
    for (const Piece &piece : m_pieces)
        count += std::ranges::count(piece.speaker, speaker);
    return count;
}

// Evenly from all that the speaker says, so that training takes the same time for a long recording.
Cepstra SpeakerFinder::someFramesOf(int speaker) const
{
    const Eigen::Index step = framesOf(speaker) / mostTrained + 1;
    Cepstra frames(cepstrumSize, (framesOf(speaker) + step - 1) / step);
    Eigen::Index seen = 0;
    for (const Piece &piece : m_pieces) {
        if (std::ranges::find(piece.speaker, speaker) == piece.speaker.end())
            continue;
        const Cepstra cepstra = m_aside.read(piece.cepstra);
        for (size_t i = 0; i < piece.speaker.size(); ++i) {
            if (piece.speaker[i] == speaker && seen++ % step == 0)
                frames.col((seen - 1) / step) = cepstra.col(Eigen::Index(i));
        }
    }
    return frames;
}

// A voice for each speaker who is heard long enough; where nobody is, for the one who is heard longest.
void SpeakerFinder::trainVoices()
{
    std::vector<Eigen::Index> lengths;
    for (int speaker = 0; speaker < speakerCount(); ++speaker)
        lengths.push_back(framesOf(speaker));
    const Eigen::Index least = std::min(leastOfSpeaker, std::ranges::max(lengths));
    m_voices.clear();
    for (size_t speaker = 0; speaker < lengths.size(); ++speaker) {
        m_check();
        if (lengths[speaker] < least)
            continue;
        const Cepstra frames = someFramesOf(int(speaker));
        const auto components = std::clamp<Eigen::Index>(frames.cols() / framesPerComponent, 1, mostComponents);
        m_voices.push_back(Mixture::of(frames, int(components)));
    }
}

std::vector<int> SpeakerFinder::path(const Cepstra &cepstra) const
{
    Eigen::MatrixXf scores(m_voices.size(), cepstra.cols());
    for (size_t voice = 0; voice < m_voices.size(); ++voice)
        scores.row(Eigen::Index(voice)) = m_voices[voice].logLikelihoods(cepstra);
    return bestVoicePath(scores, leastTurn, changeCost);
}

void SpeakerFinder::relabel(const Show &show)
{
    for (size_t i = 0; i < m_pieces.size(); ++i) {
        m_check();
        show(double(i) / double(m_pieces.size()));
        const std::vector<int> found = path(m_aside.read(m_pieces[i].cepstra));
        m_pieces[i].speaker.assign(found.begin(), found.end());
    }
}

void SpeakerFinder::learn(const Show &show)
{
    if (m_pieces.empty())
        return;
    // How often speakers become one is not known beforehand: each part takes half of what is left.
    double left = 1;
    const auto showPart = [&](double share) { show(1 - left * (1 - share / 2)); };
    groupRuns(showPart);
    do {
        left /= 2;
        for (int round = 0; round < rounds; ++round) {
            trainVoices();
            relabel([&](double share) { showPart((round + share) / rounds); });
        }
    } while (groupSpeakers());
    trainVoices();
    m_pieces.clear();
    m_frames = 0;
}

std::vector<Turn> SpeakerFinder::turns(int64_t startMs, std::span<const int16_t> samples)
{
    m_check();
    const VoicedFrames frames = m_source.voiced(samples);
    std::vector<Turn> found;
    if (frames.count() == 0 || m_voices.empty())
        return found;
    const std::vector<int> speakers = path(frames.cepstra);
    for (size_t i = 0; i < speakers.size(); ++i) {
        const int64_t at = startMs + frames.at[i] * cepstrumFrameMs;
        if (found.empty() || found.back().speaker != speakers[i])
            found.push_back({at, at, speakers[i]});
        found.back().endMs = at + cepstrumFrameMs;
    }
    return found;
}

} // namespace engine
