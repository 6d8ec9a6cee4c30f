#include "speakers/Grouping.h"
#include "speakers/SpeakerFinder.h"
#include "speakers/SpeakerLines.h"
#include "speakers/VoicePath.h"

#include "Support.h"

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Frames of a made-up voice: its own mean and spread, the same each time.
Cepstra voice(int number, int frames, unsigned seed = 1)
{
    std::mt19937 random(seed);
    Cepstra cepstra(cepstrumSize, frames);
    for (int i = 0; i < frames; ++i) {
        for (int k = 0; k < cepstrumSize; ++k) {
            const double noise = double(random() % 2001) / 1000 - 1;
            const double mean = (number * 7 + k * (number + 2)) % 5 * 0.4;
            cepstra(k, i) = float(mean + noise * (1 + 0.1 * ((number + k) % 3)));
        }
    }
    return cepstra;
}

Cepstra together(const std::vector<Cepstra> &parts)
{
    Cepstra all(cepstrumSize, 0);
    for (const Cepstra &part : parts) {
        all.conservativeResize(Eigen::NoChange, all.cols() + part.cols());
        all.rightCols(part.cols()) = part;
    }
    return all;
}

VoiceMeasure measureOf(const Cepstra &frames, double strictness)
{
    Moments all;
    all.add(frames);
    return {all.covariance(), strictness};
}

Moments momentsOf(const Cepstra &frames)
{
    Moments moments;
    moments.add(frames);
    return moments;
}

std::vector<int> grouped(const std::vector<int> &voices, int frames)
{
    std::vector<Cepstra> parts;
    std::vector<Moments> items;
    for (const int number : voices) {
        parts.push_back(voice(number, frames, unsigned(parts.size() + 1)));
        items.push_back(momentsOf(parts.back()));
    }
    return groupsByVoice(items, measureOf(together(parts), 1.8), [] {});
}

Segment spoken(int number, qint64 startMs, qint64 endMs, const std::vector<Word> &words)
{
    return {number, startMs, endMs, words, {}};
}

} // namespace

TEST(Moments, whatIsAddedCanBeTakenAway)
{
    Moments both = momentsOf(together({voice(0, 100), voice(1, 150)}));
    both -= momentsOf(voice(1, 150));
    EXPECT_EQ(both.count(), 100);
    EXPECT_TRUE(both.covariance().isApprox(momentsOf(voice(0, 100)).covariance(), 1e-6));
}

// Turns of twenty seconds of sound, and of one and a half.
TEST(Grouping, findsAsManyVoicesAsThereAre)
{
    for (const int frames : {2000, 150}) {
        SCOPED_TRACE(frames);
        EXPECT_EQ(grouped({0}, frames), (std::vector{0}));
        EXPECT_EQ(grouped({0, 0, 0, 0, 0, 0}, frames), (std::vector{0, 0, 0, 0, 0, 0}));
        std::vector<int> turns{3, 1, 3, 1, 3, 1, 3, 1, 3, 1, 3, 1};
        std::vector<int> expected{0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1};
        EXPECT_EQ(grouped(turns, frames), expected);
    }
    EXPECT_EQ(grouped({0, 1, 2, 1, 0, 3, 2}, 2000), (std::vector{0, 1, 2, 1, 0, 3, 2}));
    EXPECT_TRUE(groupsByVoice({}, {}, [] {}).empty());
}

// Half an hour of a voice that drifts a little is no second voice; one that is as long and another is.
TEST(Grouping, lengthAloneMakesNoSecondVoice)
{
    const auto difference = [](const Cepstra &a, const Cepstra &b) {
        return measureOf(together({a, b}), 1.8).difference(momentsOf(a), momentsOf(b));
    };
    Cepstra drifted = voice(0, 60000, 2);
    drifted.array() += 0.12F;
    EXPECT_LT(difference(voice(0, 60000), drifted), 0);
    EXPECT_GT(difference(voice(0, 60000), voice(1, 60000)), 0);
    EXPECT_GT(difference(voice(0, 60000), voice(1, 2000)), 0);
}

TEST(Grouping, canBeStopped)
{
    struct Stop
    {
    };
    EXPECT_THROW(groupsByVoice({momentsOf(voice(0, 100))}, {}, [] { throw Stop(); }), Stop);
}

TEST(Grouping, cutsWhereTheVoiceChanges)
{
    const Cepstra frames = together({voice(0, 1500), voice(1, 1000), voice(2, 2000)});
    const std::vector<engine::Run> runs = homogeneousRuns(frames, measureOf(frames, 1), 50);
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_NEAR(runs[1].first, 1500, 20);
    EXPECT_NEAR(runs[1].end, 2500, 20);
    EXPECT_EQ(runs.front().first, 0);
    EXPECT_EQ(runs.back().end, 4500);
}

TEST(Grouping, leavesOneVoiceWhole)
{
    const Cepstra frames = voice(1, 800);
    EXPECT_EQ(homogeneousRuns(frames, measureOf(frames, 1), 50), (std::vector<engine::Run>{{0, 800}}));
    EXPECT_EQ(homogeneousRuns(voice(1, 3), measureOf(frames, 1), 50), (std::vector<engine::Run>{{0, 3}}));
    EXPECT_TRUE(homogeneousRuns(voice(1, 0), measureOf(frames, 1), 50).empty());
}

TEST(VoicePath, changesOnlyForWhatLasts)
{
    Eigen::MatrixXf scores = Eigen::MatrixXf::Zero(2, 100);
    scores.row(0).head(40).setConstant(1);
    scores.row(1).tail(60).setConstant(1);
    std::vector<int> expected(100, 1);
    std::fill_n(expected.begin(), 40, 0);
    EXPECT_EQ(bestVoicePath(scores, 20, 5), expected);
    // Not worth it; and too short a stay.
    EXPECT_EQ(bestVoicePath(scores, 20, 50), std::vector<int>(100, 1));
    Eigen::MatrixXf blip = Eigen::MatrixXf::Zero(2, 100);
    blip.row(0).setConstant(1);
    blip.row(0).segment(50, 10).setConstant(0);
    blip.row(1).segment(50, 10).setConstant(1);
    EXPECT_EQ(bestVoicePath(blip, 30, 1), std::vector<int>(100, 0));
    EXPECT_TRUE(bestVoicePath(Eigen::MatrixXf(2, 0), 30, 1).empty());
}

TEST(SpeakerLines, aSegmentIsCutBetweenWords)
{
    const std::vector<Segment> segments{
        spoken(0, 1000, 5000, {{u"how"_s, 1200, 1500}, {u"are"_s, 1500, 1900}, {u"fine"_s, 2600, 3100}}),
        spoken(1, 6000, 7000, {}), spoken(2, 8000, 9000, {{u"good"_s, 8100, 8500}})};
    // The second turn reaches into the first one's last word, but not far.
    const std::vector<Turn> turns{{1100, 1750, 4}, {1750, 3000, 2}, {8000, 8600, 4}};
    const std::vector<Segment> parts = cutBySpeaker(segments, turns);
    ASSERT_EQ(parts.size(), 4U);
    EXPECT_EQ(parts[0].text(), u"how are"_s);
    EXPECT_EQ(parts[0].speaker, u"Speaker 1"_s);
    EXPECT_EQ(parts[0].startMs, 1000);
    EXPECT_EQ(parts[0].endMs, 1900);
    EXPECT_EQ(parts[1].text(), u"fine"_s);
    EXPECT_EQ(parts[1].speaker, u"Speaker 2"_s);
    EXPECT_EQ(parts[1].startMs, 2600);
    EXPECT_EQ(parts[1].endMs, 5000);
    EXPECT_TRUE(parts[2].speaker.isEmpty());
    EXPECT_EQ(parts[3].speaker, u"Speaker 1"_s);
    for (size_t i = 0; i < parts.size(); ++i)
        EXPECT_EQ(parts[i].number, int(i));
}

TEST(SpeakerLines, aWordOutsideOfAllTurnsGoesToTheNearest)
{
    const std::vector<Segment> segments{spoken(
        0, 0, 9000, {{u"early"_s, 100, 200}, {u"between"_s, 3000, 3100}, {u"late"_s, 8000, 8100}})};
    const std::vector<Segment> parts = cutBySpeaker(segments, {{1000, 2000, 0}, {3500, 5000, 1}});
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].text(), u"early"_s);
    EXPECT_EQ(parts[1].text(), u"between late"_s);
}

TEST(SpeakerLines, withoutTurnsNothingIsNamed)
{
    const std::vector<Segment> segments{spoken(0, 0, 900, {{u"word"_s, 100, 200}})};
    const std::vector<Segment> parts = cutBySpeaker(segments, {});
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_TRUE(parts[0].speaker.isEmpty());
}

TEST(SpeakerFinder, nothingHeardIsNobody)
{
    SpeakerFinder finder([] {});
    finder.hear({});
    finder.learn();
    EXPECT_TRUE(finder.turns(0, std::vector<int16_t>(16000)).empty());
}

TEST(SpeakerFinder, aShortSoundIsOneSpeakerWhereverItStands)
{
    std::vector<int16_t> samples;
    test::appendBabble(samples, 1, 5000);
    SpeakerFinder finder([] {});
    finder.hear(samples);
    finder.learn();
    const std::vector<Turn> turns = finder.turns(60000, samples);
    ASSERT_EQ(turns.size(), 1U);
    EXPECT_EQ(turns[0].speaker, 0);
    EXPECT_GE(turns[0].startMs, 60000);
    EXPECT_LE(turns[0].endMs, 61000);
}

TEST(SpeakerFinder, tellsHowFarItsLearningIs)
{
    SpeakerFinder finder([] {});
    for (int i = 0; i < 20; ++i) {
        std::vector<int16_t> samples;
        test::appendBabble(samples, 2 + 0.1 * i, 5000);
        finder.hear(samples);
    }
    std::vector<double> shares;
    finder.learn([&](double share) { shares.push_back(share); });
    EXPECT_GE(shares.size(), 20U * 4) << "at each piece, each time";
    EXPECT_TRUE(std::ranges::is_sorted(shares));
    EXPECT_EQ(shares.front(), 0);
    EXPECT_GT(shares.back(), 0.7);
    EXPECT_LT(shares.back(), 1);
}

TEST(SpeakerFinder, anHourIsLearnedFromAsSomePiecesOfIt)
{
    std::vector<int16_t> samples;
    test::appendBabble(samples, 20, 5000);
    SpeakerFinder finder([] {});
    for (int i = 0; i < 330; ++i)
        finder.hear(samples);
    EXPECT_LE(finder.framesKept(), 300000);
    EXPECT_GT(finder.framesKept(), 100000);
}

} // namespace engine
