#include "media/Segmenter.h"

#include "Support.h"

namespace engine {

void PrintTo(const Span &span, std::ostream *out)
{
    *out << span.startMs << '-' << span.endMs;
}

namespace {

std::vector<Span> spansOf(const std::vector<int16_t> &samples, size_t block = 4096)
{
    Segmenter segmenter;
    for (size_t at = 0; at < samples.size(); at += block)
        segmenter.add(std::span(samples).subspan(at, std::min(block, samples.size() - at)));
    segmenter.finish();
    return segmenter.take();
}

int64_t lengthMs(const std::vector<int16_t> &samples)
{
    return int64_t(samples.size()) / 16;
}

void expectOrdered(const std::vector<Span> &spans, int64_t endMs)
{
    int64_t last = 0;
    for (const Span &span : spans) {
        EXPECT_GE(span.startMs, last);
        EXPECT_GT(span.endMs, span.startMs);
        EXPECT_LE(span.endMs - span.startMs, 21000);
        last = span.endMs;
    }
    EXPECT_LE(last, endMs);
}

} // namespace

TEST(Segmenter, silenceHumAndNothingHaveNoSpeech)
{
    EXPECT_TRUE(spansOf({}).empty());
    std::vector<int16_t> silence;
    test::appendSilence(silence, 5);
    EXPECT_TRUE(spansOf(silence).empty());
    for (const int amplitude : {3, 300, 20000}) {
        std::vector<int16_t> noise;
        test::appendNoise(noise, 5, amplitude);
        EXPECT_TRUE(spansOf(noise).empty()) << amplitude;
    }
}

TEST(Segmenter, findsSpeechAtEveryLoudness)
{
    for (const int amplitude : {200, 2000, 20000}) {
        std::vector<int16_t> samples;
        for (int i = 0; i < 3; ++i) {
            test::appendNoise(samples, 1.5, amplitude / 100 + 1);
            test::appendBabble(samples, 3, amplitude);
        }
        test::appendNoise(samples, 1.5, amplitude / 100 + 1);
        const std::vector<Span> spans = spansOf(samples);
        ASSERT_EQ(spans.size(), 3U) << amplitude;
        for (size_t i = 0; i < spans.size(); ++i) {
            const int64_t start = 1500 + int64_t(i) * 4500;
            EXPECT_LE(spans[i].startMs, start) << amplitude;
            EXPECT_GE(spans[i].startMs, start - 400) << amplitude;
            EXPECT_GE(spans[i].endMs, start + 2900) << amplitude;
            EXPECT_LE(spans[i].endMs, start + 3400) << amplitude;
        }
    }
}

TEST(Segmenter, oneShortWordInALongSilenceIsFound)
{
    std::vector<int16_t> samples;
    test::appendNoise(samples, 70, 10);
    test::appendBabble(samples, 0.5, 3000);
    test::appendNoise(samples, 70, 10);
    const std::vector<Span> spans = spansOf(samples);
    ASSERT_EQ(spans.size(), 1U);
    EXPECT_LE(spans[0].startMs, 70000);
    EXPECT_GE(spans[0].endMs, 70450);
}

TEST(Segmenter, speechWithoutPausesIsCutIntoPiecesWithoutLoss)
{
    std::vector<int16_t> samples;
    test::appendNoise(samples, 1, 10);
    test::appendBabble(samples, 100, 8000);
    test::appendNoise(samples, 1, 10);
    const std::vector<Span> spans = spansOf(samples);
    expectOrdered(spans, lengthMs(samples));
    ASSERT_GE(spans.size(), 5U);
    for (size_t i = 1; i < spans.size(); ++i)
        EXPECT_EQ(spans[i].startMs, spans[i - 1].endMs);
    EXPECT_LE(spans.front().startMs, 1000);
    EXPECT_GE(spans.back().endMs, 100900);
}

TEST(Segmenter, theSizeOfTheBlocksMakesNoDifference)
{
    std::vector<int16_t> samples;
    for (int i = 0; i < 20; ++i) {
        test::appendNoise(samples, 0.2 + 0.1 * i, 20);
        test::appendBabble(samples, 0.5 + 0.7 * i, 1000 + 500 * i);
    }
    const std::vector<Span> spans = spansOf(samples);
    expectOrdered(spans, lengthMs(samples));
    for (const size_t block : {size_t(1), size_t(159), size_t(160), size_t(16384), samples.size()})
        EXPECT_EQ(spansOf(samples, block), spans) << block;
}

TEST(Segmenter, givesOutWhatItFindsBeforeTheEnd)
{
    Segmenter segmenter;
    std::vector<int16_t> samples;
    test::appendBabble(samples, 3, 5000);
    test::appendNoise(samples, 60, 10);
    segmenter.add(samples);
    EXPECT_EQ(segmenter.take().size(), 1U);
    segmenter.finish();
    EXPECT_TRUE(segmenter.take().empty());
}

} // namespace engine
