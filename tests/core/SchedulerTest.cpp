#include "app/Scheduler.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

HistoryPointer historyOf(const QByteArray &json)
{
    return std::make_shared<const History>(ArrangeHistory(test::array(json)));
}

/// Idle: a history without work, a file waiting.
JobsState idle()
{
    JobsState jobs;
    jobs.loaded = true;
    AddWaiting(jobs.waiting, {u"/a.m4a"_s}, {});
    return jobs;
}

TEST(SomethingActive, HoldsForAStartInFlight)
{
    JobsState jobs;
    EXPECT_FALSE(SomethingActive(jobs));
    jobs.starting = true;
    EXPECT_TRUE(SomethingActive(jobs));
}

TEST(SomethingActive, HoldsForEveryJobUnderWayPausedOrHiddenToo)
{
    JobsState jobs;
    for (const QByteArray &history :
         {QByteArray(R"([{"id":"a","status":"queued"}])"), QByteArray(R"([{"id":"a","status":"transcribing"}])"),
          QByteArray(R"([{"id":"a","status":"analyzing"}])"), QByteArray(R"([{"id":"a","status":"cleaning"}])"),
          QByteArray(R"([{"id":"a","status":"cleaning","paused":true}])"),
          QByteArray(R"([{"id":"a","status":"queued","hidden":true}])")}) {
        jobs.history = historyOf(history);
        EXPECT_TRUE(SomethingActive(jobs)) << history.toStdString();
    }
    jobs.history = historyOf(R"([{"id":"a","status":"ready"},{"id":"b","status":"paused"},{"id":null,"status":"queued"}])");
    EXPECT_FALSE(SomethingActive(jobs));
}

TEST(BusyExcept, APausedJobDoesNotKeepFromResumingAnother)
{
    JobsState jobs;
    jobs.history = historyOf(R"([{"id":"a","status":"transcribing","paused":true},{"id":"b","status":"failed"}])");
    EXPECT_FALSE(BusyExcept(jobs, u"b"_s));
    EXPECT_TRUE(SomethingActive(jobs));
    jobs.history = historyOf(R"([{"id":"a","status":"transcribing","paused":1}])");
    EXPECT_FALSE(BusyExcept(jobs, u"b"_s));
}

TEST(BusyExcept, ARunningJobKeepsFromResumingAnotherButNotItself)
{
    JobsState jobs;
    jobs.history = historyOf(R"([{"id":"a","status":"transcribing"},{"id":"b","status":"queued","paused":true}])");
    EXPECT_TRUE(BusyExcept(jobs, u"b"_s));
    EXPECT_FALSE(BusyExcept(jobs, u"a"_s));
}

TEST(BusyExcept, AStartInFlightKeepsFromEverything)
{
    JobsState jobs;
    jobs.starting = true;
    EXPECT_TRUE(BusyExcept(jobs, u"a"_s));
}

TEST(MayStartNext, AnIdleEngineAndAWaitingFile)
{
    EXPECT_TRUE(MayStartNext(idle()));
}

TEST(MayStartNext, NothingWaits)
{
    JobsState jobs = idle();
    jobs.waiting.clear();
    EXPECT_FALSE(MayStartNext(jobs));
}

TEST(MayStartNext, AStartInFlightHoldsTheQueue)
{
    JobsState jobs = idle();
    jobs.starting = true;
    EXPECT_FALSE(MayStartNext(jobs));
}

TEST(MayStartNext, AJobUnderWayHoldsTheQueueAPausedOneToo)
{
    JobsState jobs = idle();
    jobs.history = historyOf(R"([{"id":"a","status":"transcribing"}])");
    EXPECT_FALSE(MayStartNext(jobs));
    jobs.history = historyOf(R"([{"id":"a","status":"transcribing","paused":true}])");
    EXPECT_FALSE(MayStartNext(jobs));
    jobs.history = historyOf(R"([{"id":"a","status":"ready"}])");
    EXPECT_TRUE(MayStartNext(jobs));
}

TEST(MayStartNext, AStartThatNoHistoryShowsYetHoldsTheQueue)
{
    JobsState jobs = idle();
    jobs.startUnlisted = true;
    for (const bool loaded : {false, true}) {
        jobs.loaded = loaded;
        EXPECT_FALSE(MayStartNext(jobs)) << loaded;
    }
}

TEST(MayStartNext, AnInterruptedStartOfUnknownFateHoldsTheQueue)
{
    JobsState jobs = idle();
    jobs.interruptedStart = StartRecord{};
    EXPECT_FALSE(MayStartNext(jobs));
}

TEST(MayStartNext, BeforeTheFirstHistoryThePollInFlightIsAwaited)
{
    JobsState jobs = idle();
    jobs.loaded = false;
    jobs.polling = true;
    EXPECT_FALSE(MayStartNext(jobs));
    jobs.polling = false;
    EXPECT_TRUE(MayStartNext(jobs));
}

TEST(MayStartNext, WithoutAnEngineTheFilesKeepWaiting)
{
    JobsState jobs = idle();
    jobs.engineBroken = true;
    for (const bool loaded : {false, true}) {
        jobs.loaded = loaded;
        EXPECT_FALSE(MayStartNext(jobs)) << loaded;
    }
}

} // namespace
