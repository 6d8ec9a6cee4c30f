#include "ui/FrameTicks.h"

#include <gtest/gtest.h>

using namespace tuppi;

TEST(FrameTicks, areCommonToAllThatMoves)
{
    struct Case
    {
        long long now;
        int milliseconds, expected;
    };
    for (const Case &c : {Case{0, 40, 40}, Case{0, 80, 80}, Case{4000, 80, 80},
                          // late, or a little early
                          Case{4003, 40, 37}, Case{4003, 80, 77}, Case{4019, 80, 61}, Case{4039, 80, 81},
                          Case{3999, 40, 41},
                          // between two
                          Case{4010, 40, 30}, Case{4030, 40, 50},
                          // no number of ticks
                          Case{4000, 100, 120}, Case{4000, 10, 40}, Case{4030, 1, 10}, Case{4000, 0, 40}}) {
        SCOPED_TRACE(testing::Message() << c.milliseconds << " from " << c.now);
        EXPECT_EQ(millisecondsToTick(c.now, c.milliseconds), c.expected);
    }
}

TEST(FrameTicks, keepThePaceHoweverLateEachIs)
{
    long long now = 4'000'000;
    for (int step = 0; step < 1000; ++step)
        now += millisecondsToTick(now, 80) + step % 19;
    EXPECT_NEAR(double(now), 4'000'000 + 80'000, 40);
}
