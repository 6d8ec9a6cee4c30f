#include "app/MainLoop.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using tuppi::IsEngineBroken;
using tuppi::PlanTick;

namespace {

TEST(PlanTick, IdleAndLoadedPollsEveryFifthTickAndNeverResumes)
{
    for (unsigned tick = 1; tick <= 60; ++tick) {
        EXPECT_EQ(PlanTick(tick, false, false, true).poll, tick % 5 == 0) << tick;
        EXPECT_FALSE(PlanTick(tick, false, false, true).resume) << tick;
    }
}

TEST(PlanTick, IdleAndNotLoadedPollsEveryTick)
{
    for (unsigned tick = 1; tick <= 60; ++tick) {
        EXPECT_TRUE(PlanTick(tick, false, false, false).poll) << tick;
        EXPECT_FALSE(PlanTick(tick, false, false, false).resume) << tick;
    }
}

TEST(PlanTick, WorkPollsEveryTickAndResumesEveryFifteenth)
{
    for (const bool loaded : {false, true}) {
        for (unsigned tick = 1; tick <= 60; ++tick) {
            EXPECT_TRUE(PlanTick(tick, true, false, loaded).poll) << tick;
            EXPECT_EQ(PlanTick(tick, true, false, loaded).resume, tick == 15 || tick == 30 || tick == 45 || tick == 60)
                << tick;
        }
    }
}

TEST(PlanTick, StartInFlightHoldsResumeBackAndStillPolls)
{
    for (unsigned tick = 1; tick <= 60; ++tick) {
        EXPECT_FALSE(PlanTick(tick, true, true, true).resume) << tick;
        EXPECT_TRUE(PlanTick(tick, true, true, true).poll) << tick;
    }
}

struct BrokenCase
{
    const char *name;
    int status;
    bool array;
    bool fileExists;
    bool broken;
};

class EngineBrokenTable : public testing::TestWithParam<BrokenCase>
{
};

TEST_P(EngineBrokenTable, Verdict)
{
    EXPECT_EQ(IsEngineBroken(GetParam().status, GetParam().array, GetParam().fileExists), GetParam().broken);
}

const BrokenCase brokenCases[]{
    {"CommandNotFound", 127, false, false, true},
    {"CommandNotFoundThoughTheFileIsThere", 127, false, true, true},
    {"ArrayClearsItEvenWithStatus127", 127, true, false, false},
    {"Array", 0, true, true, false},
    {"ArrayThoughTheFileIsGone", 0, true, false, false},
    {"ArrayWithAnotherStatus", 1, true, true, false},
    {"NoArrayAndTheFileIsThere", 0, false, true, false},
    {"NoArrayAndTheFileIsGone", 0, false, false, true},
    {"FailedAndTheFileIsThere", 1, false, true, false},
    {"NotLaunchedAndTheFileIsGone", -1, false, false, true},
    {"NotLaunchedAndTheFileIsThere", -1, false, true, false},
};

INSTANTIATE_TEST_SUITE_P(MainLoop, EngineBrokenTable, testing::ValuesIn(brokenCases), tuppi::test::caseName);

} // namespace
