#include "worker/Decoders.h"

#include "FakeRecogniser.h"
#include "Support.h"

#include <algorithm>
#include <csignal>
#include <sched.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

SoundTask taskOf(int seconds)
{
    SoundTask task;
    task.samples.assign(size_t(seconds) * 16000, int16_t(1));
    task.pieces = {{Segment{seconds, 0, qint64(seconds) * 1000, std::nullopt, {}}, 0, 0}};
    return task;
}

class DecodersTest : public testing::Test
{
protected:
    Decoders decoders(int most)
    {
        return {m_recogniser, most,
                [this](const SoundTask &task) { m_begun.push_back(task.pieces[0].segment.number); }, [] {}};
    }

    static Decoders::Done next(Decoders &decoders)
    {
        std::optional<Decoders::Done> done;
        while (!done)
            done = decoders.wait(1000);
        return *std::move(done);
    }

    static bool holds(const QString &path) { return QFile::exists(path); }

    test::Home m_home;
    test::FakeRecogniser m_recogniser;
    std::vector<int> m_begun;
};

} // namespace

TEST_F(DecodersTest, severalWorkAtOnceAndEachGetsItsOwnSound)
{
    // Each waits until the other has begun: one after the other would never end.
    m_recogniser.act = [this](std::span<const int16_t> samples) {
        const auto seconds = int(samples.size() / 16000);
        test::write(m_home.file(QString::number(seconds)), "x");
        while (!holds(m_home.file(QString::number(3 - seconds))))
            ::sched_yield();
        return test::FakeRecogniser::words(samples);
    };
    Decoders both = decoders(2);
    both.begin(taskOf(1));
    EXPECT_FALSE(both.full());
    both.begin(taskOf(2));
    EXPECT_TRUE(both.full());
    int seconds = 0;
    for (int i = 0; i < 2; ++i) {
        const Decoders::Done done = next(both);
        EXPECT_EQ(done.heard.phrases.front().words, test::FakeRecogniser::words(done.task.samples));
        seconds += done.task.pieces.front().segment.number;
    }
    EXPECT_EQ(seconds, 3);
    EXPECT_TRUE(both.idle());
}

TEST_F(DecodersTest, oneThatIsKilledIsBegunAgain)
{
    m_recogniser.act = [this](std::span<const int16_t> samples) {
        if (samples.size() == 16000 && !holds(m_home.file(u"killed"_s))) {
            test::write(m_home.file(u"killed"_s), "x");
            ::raise(SIGKILL);
        }
        return test::FakeRecogniser::words(samples);
    };
    Decoders both = decoders(2);
    both.begin(taskOf(1));
    both.begin(taskOf(2));
    next(both);
    next(both);
    std::ranges::sort(m_begun);
    EXPECT_EQ(m_begun, (std::vector{1, 1, 2}));
}

TEST_F(DecodersTest, oneThatAlwaysDiesIsAFailureAndTakesTheOthersWithIt)
{
    m_recogniser.act = [](std::span<const int16_t> samples) -> std::vector<Word> {
        while (samples.size() > 16000)
            ::pause();
        ::_exit(1);
    };
    {
        Decoders both = decoders(2);
        both.begin(taskOf(2));
        both.begin(taskOf(1));
        EXPECT_TRUE(test::sentenceOf([&] {
                        next(both);
                    }).startsWith(u"The speech recogniser stopped again and again"));
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(DecodersTest, tellsHowFarAllOfThemAre)
{
    m_recogniser.act = [this](std::span<const int16_t> samples) {
        while (!holds(m_home.file(u"enough"_s)))
            ::sched_yield();
        return test::FakeRecogniser::words(samples);
    };
    m_recogniser.percent = 50;
    Decoders both = decoders(2);
    both.begin(taskOf(1));
    both.begin(taskOf(3));
    while (both.unfinishedMs() < 2000)
        EXPECT_FALSE(both.wait(1000));
    EXPECT_EQ(both.unfinishedMs(), 2000);
    test::write(m_home.file(u"enough"_s), "x");
    next(both);
    next(both);
    EXPECT_EQ(both.unfinishedMs(), 0);
}

} // namespace engine
