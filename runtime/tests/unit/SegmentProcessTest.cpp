#include "worker/SegmentProcess.h"

#include "FakeRecogniser.h"
#include "Support.h"

#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

SegmentProcess::State end(SegmentProcess &process)
{
    SegmentProcess::State state = SegmentProcess::State::Running;
    while (state == SegmentProcess::State::Running)
        state = process.wait(1000);
    return state;
}

const std::vector<int16_t> samples(16000, int16_t(1));

} // namespace

TEST(SegmentProcess, givesTheWordsOfTheChild)
{
    test::FakeRecogniser recogniser;
    SegmentProcess process(recogniser, {samples}, [] {});
    ASSERT_EQ(end(process), SegmentProcess::State::Done);
    EXPECT_EQ(process.heard(), test::FakeRecogniser().recognise({samples}));
}

TEST(SegmentProcess, anAnswerMayBeLargerThanAPipe)
{
    test::FakeRecogniser recogniser;
    recogniser.act = [](std::span<const int16_t>) {
        return std::vector<Word>(20000, Word{u"wonderful"_s, 1, 2});
    };
    SegmentProcess process(recogniser, {samples}, [] {});
    ASSERT_EQ(end(process), SegmentProcess::State::Done);
    EXPECT_EQ(process.heard().phrases.front().words.size(), 20000U);
}

TEST(SegmentProcess, passesOnAFailure)
{
    test::FakeRecogniser recogniser;
    recogniser.act = [](std::span<const int16_t>) -> std::vector<Word> { throw Failure(u"Не можу."_s); };
    SegmentProcess process(recogniser, {samples}, [] {});
    ASSERT_EQ(end(process), SegmentProcess::State::Done);
    EXPECT_EQ(test::sentenceOf([&] { process.heard(); }), u"Не можу."_s);
}

TEST(SegmentProcess, survivesACrashOfTheChild)
{
    test::FakeRecogniser recogniser;
    recogniser.act = [](std::span<const int16_t>) -> std::vector<Word> { ::_exit(3); };
    SegmentProcess process(recogniser, {samples}, [] {});
    EXPECT_EQ(end(process), SegmentProcess::State::Died);
}

TEST(SegmentProcess, leavesNoChildBehind)
{
    test::FakeRecogniser recogniser;
    recogniser.act = [](std::span<const int16_t>) -> std::vector<Word> {
        for (;;)
            ::pause();
    };
    {
        SegmentProcess process(recogniser, {samples}, [] {});
        EXPECT_EQ(process.wait(10), SegmentProcess::State::Running);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace engine
