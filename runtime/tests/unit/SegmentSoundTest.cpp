#include "worker/SegmentSound.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Of a recording of two seconds.
QString whyWithout(qint64 startMs, qint64 endMs, qint64 tailMs = 0)
{
    const test::Home home;
    std::vector<int16_t> recording;
    test::appendBabble(recording, 2, 5000);
    test::write(home.file(u"two.wav"_s), test::wav(recording));
    SegmentSound sound(home.file(u"two.wav"_s), [] {});
    return test::sentenceOf([&] {
        std::vector<int16_t> got;
        sound.append(got, {0, startMs, endMs, std::nullopt, {}}, tailMs);
        EXPECT_EQ(got.size(), size_t(endMs - startMs + tailMs) * 16);
    });
}

} // namespace

TEST(SegmentSound, goesToTheLastSample)
{
    EXPECT_EQ(whyWithout(0, 2000), u"no failure"_s);
    EXPECT_EQ(whyWithout(500, 1500, 500), u"no failure"_s);
}

TEST(SegmentSound, isNoneWhereTheRecordingEndsBeforeIt)
{
    const QString shorter = u"The recording has become shorter since it was taken."_s;
    EXPECT_EQ(whyWithout(2500, 3000), shorter);
    EXPECT_EQ(whyWithout(1500, 2001), shorter);
    EXPECT_EQ(whyWithout(1500, 2000, 1), shorter);
}

} // namespace engine
