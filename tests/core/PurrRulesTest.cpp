#include "list/PurrRules.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace tuppi;

namespace {

bool purrsFor(const QByteArray &history)
{
    return IsPurringWork(ArrangeHistory(test::array(history)));
}

TEST(IsPurringWork, OnlyForWorkThatGoesOn)
{
    EXPECT_FALSE(IsPurringWork(History()));
    for (const QByteArray status : {"transcribing", "analyzing", "cleaning"}) {
        EXPECT_TRUE(purrsFor(R"([{"id":"a","status":")" + status + R"("}])")) << status.toStdString();
        EXPECT_TRUE(purrsFor(R"([{"id":"a","status":")" + status + R"(","paused":false}])"));
        EXPECT_TRUE(purrsFor(R"([{"id":"a","status":")" + status + R"(","paused":null}])"));
        EXPECT_FALSE(purrsFor(R"([{"id":"a","status":")" + status + R"(","paused":true}])"));
        EXPECT_FALSE(purrsFor(R"([{"id":"a","status":")" + status + R"(","paused":1}])"));
    }
    for (const QByteArray status : {"queued", "ready", "failed", "cancelled", "waiting", "starting", "", "Cleaning"})
        EXPECT_FALSE(purrsFor(R"([{"id":"a","status":")" + status + R"("}])")) << status.toStdString();
    EXPECT_FALSE(purrsFor(R"([{"id":"a"},{"id":"b","status":null}])"));
}

TEST(IsPurringWork, OneJobIsEnough)
{
    EXPECT_TRUE(purrsFor(R"([{"id":"a","status":"queued"},{"id":"b","status":"cleaning","paused":true},
                             {"id":"c","status":"analyzing","hidden":true}])"));
    EXPECT_FALSE(purrsFor(R"([{"id":"a","status":"queued"},{"id":"b","status":"cleaning","paused":true}])"));
}

TEST(NextPurrStep, EveryState)
{
    EXPECT_EQ(NextPurrStep(Purr::Silent, true), PurrStep::Start);
    EXPECT_EQ(NextPurrStep(Purr::Silent, false), PurrStep::None);
    EXPECT_EQ(NextPurrStep(Purr::Playing, true), PurrStep::None);
    EXPECT_EQ(NextPurrStep(Purr::Playing, false), PurrStep::Fade);
    EXPECT_EQ(NextPurrStep(Purr::Fading, true), PurrStep::Restore);
    EXPECT_EQ(NextPurrStep(Purr::Fading, false), PurrStep::None);
}

TEST(FadedVolume, IsSilentAfterNineStepsAndNeverNegative)
{
    QList<double> volumes;
    double volume = soundVolume;
    while (!IsFadedOut(volume) && volumes.size() < 100) {
        volume = FadedVolume(volume);
        volumes.append(volume);
    }
    const QList<double> expected{0.44, 0.38, 0.32, 0.26, 0.20, 0.14, 0.08, 0.02, 0.0};
    ASSERT_EQ(volumes.size(), expected.size());
    for (qsizetype step = 0; step < expected.size(); ++step)
        EXPECT_NEAR(volumes.at(step), expected.at(step), 1e-9);
    EXPECT_EQ(volumes.last(), 0);
}

TEST(IsFadedOut, AtAThousandth)
{
    EXPECT_TRUE(IsFadedOut(0.001));
    EXPECT_TRUE(IsFadedOut(0));
    EXPECT_FALSE(IsFadedOut(0.0011));
}

} // namespace
