#include "terminal/Report.h"

#include "support/Support.h"

#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

/// The state of one run without a window, and what the report made of it.
class ReportTest : public testing::Test
{
protected:
    void wait(const QStringList &paths) { AddWaiting(m_jobs.waiting, paths, {u"auto"_s, u"en"_s, true, false}); }
    void load(const QByteArray &history)
    {
        m_jobs.history = std::make_shared<const History>(ArrangeHistory(test::array(history)));
        m_jobs.loaded = true;
        m_jobs.startUnlisted = false;
    }
    void startFirst()
    {
        m_jobs.startingEntry = m_jobs.waiting.takeFirst();
        m_jobs.starting = true;
    }
    void answerStart(bool taken)
    {
        m_jobs.starting = false;
        m_jobs.startUnlisted = taken;
        m_report.startFinished(WaitingPath(m_jobs.startingEntry), taken);
    }
    /// "title: text" of every new line, one that only moves on marked by "~".
    QStringList update()
    {
        QStringList lines;
        for (const ReportLine &line : m_report.update(m_jobs, {}))
            lines.append((line.sameStage ? u"~"_s : u""_s) + line.title + u": "_s + line.text);
        return lines;
    }
    /// "title: reason" of every file given up.
    QStringList giveUp()
    {
        QStringList lines;
        for (const ReportLine &line : m_report.giveUpUnlisted(*m_jobs.history))
            lines.append(line.title + u": "_s + line.text);
        return lines;
    }
    /// The road of one file up to the engine's yes, against the given history.
    void handOver(const QString &path)
    {
        wait({path});
        startFirst();
        update();
        answerStart(true);
    }

    JobsState m_jobs;
    Report m_report;
};

TEST_F(ReportTest, EveryStepOfOneFileIsALine)
{
    wait({u"/x/talk.m4a"_s});
    EXPECT_EQ(update(), QStringList{u"talk: Waiting in line…"_s});
    EXPECT_EQ(update(), QStringList());
    load("[]");
    startFirst();
    EXPECT_EQ(update(), QStringList{u"talk: Copying the file…"_s});
    answerStart(true);
    load(R"([{"id":"j","title":"talk","status":"queued"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Starting…"_s});
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load(R"([{"id":"j","title":"talk","status":"ready","call_dir":"/calls/talk","duration_seconds":60}])");
    EXPECT_EQ(update(), QStringList{u"talk: Done ·  · 1 min"_s});
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_TRUE(m_report.allReady());
    ASSERT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().callDir, u"/calls/talk"_s);
}

TEST_F(ReportTest, ProgressOfTheSameStageIsMarked)
{
    load("[]");
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"transcribing"}])");
    m_jobs.latestJob = test::object(R"({"id":"j","progress":"10%"})");
    EXPECT_EQ(update(), QStringList{u"talk: Listening and writing down… 10%"_s});
    m_jobs.latestJob = test::object(R"({"id":"j","progress":"20%"})");
    EXPECT_EQ(update(), QStringList{u"~talk: Listening and writing down… 20%"_s});
    load(R"([{"id":"j","title":"talk","status":"analyzing"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Writing the summary… 20%"_s});
}

TEST_F(ReportTest, LineOfAnotherFileInBetweenIsNoProgress)
{
    load("[]");
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"transcribing"}])");
    m_jobs.latestJob = test::object(R"({"id":"j","progress":"10%"})");
    update();
    wait({u"/x/other.m4a"_s});
    EXPECT_EQ(update(), QStringList{u"other: Waiting in line…"_s});
    m_jobs.latestJob = test::object(R"({"id":"j","progress":"20%"})");
    EXPECT_EQ(update(), QStringList{u"talk: Listening and writing down… 20%"_s});
}

TEST_F(ReportTest, JobsKnownBeforeAreNotFollowed)
{
    load(R"([{"id":"old","title":"old","status":"ready"}])");
    EXPECT_EQ(update(), QStringList());
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_TRUE(m_report.files().isEmpty());
}

TEST_F(ReportTest, JobUnderWayWhenTheRunBeginsIsFollowedToItsEnd)
{
    load(R"([{"id":"old","title":"old","status":"transcribing"}])");
    EXPECT_EQ(update(), QStringList{u"old: Listening and writing down…"_s});
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load(R"([{"id":"old","title":"old","status":"failed","error":"x"}])");
    EXPECT_EQ(update(), QStringList{u"old: Failed — x"_s});
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_FALSE(m_report.allReady());
}

TEST_F(ReportTest, FilesOfEqualTitleGetAJobEach)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j1","title":"talk","status":"ready","call_dir":"/1"}])");
    update();
    handOver(u"/y/talk.wav"_s);
    load(R"([{"id":"j2","title":"talk","status":"ready","call_dir":"/2"},{"id":"j1","title":"talk","status":"ready","call_dir":"/1"}])");
    update();
    ASSERT_EQ(m_report.files().size(), 2);
    EXPECT_EQ(m_report.files().at(0).callDir, u"/1"_s);
    EXPECT_EQ(m_report.files().at(1).callDir, u"/2"_s);
    EXPECT_TRUE(m_report.isFinished(m_jobs));
}

TEST_F(ReportTest, JobWithAnotherTitleIsTakenForTheFileThatWaitsForOne)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"A talk about cats","status":"queued"}])");
    update();
    EXPECT_EQ(m_report.files().first().jobId, u"j"_s);
}

TEST_F(ReportTest, JobWithTheTitleComesBeforeOneWithoutIt)
{
    load("[]");
    update();
    handOver(u"/x/two.wav"_s);
    load(R"([{"id":"j2","title":"three","status":"failed"},{"id":"j1","title":"two","status":"ready"}])");
    update();
    ASSERT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().jobId, u"j1"_s);
    EXPECT_TRUE(m_report.allReady());
}

TEST_F(ReportTest, FileTakenBeforeTheFirstHistoryGetsTheJobOfItsTitle)
{
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"old","title":"talk","status":"ready","call_dir":"/old"},{"id":"other","title":"other","status":"ready"},)"
         R"({"id":"new","title":"talk","status":"queued"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Starting…"_s});
    EXPECT_EQ(giveUp(), QStringList());
    ASSERT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().jobId, u"new"_s);
}

TEST_F(ReportTest, FileTakenBeforeTheFirstHistoryGetsNoJobOfAnotherTitle)
{
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"old","title":"other","status":"ready"}])");
    EXPECT_EQ(update(), QStringList());
    EXPECT_EQ(giveUp(), QStringList{u"talk: The engine took the file but lists no job for it."_s});
}

TEST_F(ReportTest, JobOfSomebodyElseIsNotFollowed)
{
    load("[]");
    update();
    wait({u"/x/talk.m4a"_s});
    load(R"([{"id":"foreign","title":"talk","status":"queued"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Waiting in line…"_s});
    EXPECT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().jobId, u""_s);
}

TEST_F(ReportTest, JobThatTheFirstHistoryListsDuringItsStartIsTheFiles)
{
    for (const QByteArray &status : {QByteArray("transcribing"), QByteArray("ready")}) {
        m_jobs = {};
        m_report = {};
        wait({u"/x/talk.m4a"_s});
        startFirst();
        update();
        const QByteArray history = R"([{"id":"j","title":"talk","status":")" + status + R"("}])";
        load(history);
        EXPECT_EQ(update(), QStringList());
        answerStart(true);
        update();
        load(history);
        update();
        EXPECT_EQ(giveUp(), QStringList());
        ASSERT_EQ(m_report.files().size(), 1);
        EXPECT_EQ(m_report.files().first().jobId, u"j"_s);
    }
}

TEST_F(ReportTest, EarlierJobOfTheTitleInAFirstHistoryDuringAStartIsNotTheFiles)
{
    wait({u"/x/talk.m4a"_s});
    startFirst();
    load(R"([{"id":"old","title":"talk","status":"ready"}])");
    update();
    answerStart(true);
    update();
    load(R"([{"id":"new","title":"talk","status":"queued"},{"id":"old","title":"talk","status":"ready"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Starting…"_s});
    ASSERT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().jobId, u"new"_s);
}

TEST_F(ReportTest, FirstHistoryDuringAStartFollowsWhatElseIsUnderWay)
{
    wait({u"/x/talk.m4a"_s});
    startFirst();
    update();
    load(R"([{"id":"other","title":"other","status":"transcribing"}])");
    EXPECT_EQ(update(), QStringList{u"other: Listening and writing down…"_s});
    EXPECT_EQ(update(), QStringList());
    EXPECT_EQ(m_report.files().size(), 2);
}

TEST_F(ReportTest, JobOfAStartThatWasInterruptedIsFollowedToItsEnd)
{
    m_jobs.interruptedStart = StartRecord{{{u"url"_s, QUrl::fromLocalFile(u"/x/talk.m4a"_s)}}, QStringList()};
    load("[]");
    EXPECT_EQ(update(), QStringList());
    EXPECT_EQ(update(), QStringList());
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    m_jobs.interruptedStart.reset();
    load(R"([{"id":"j","title":"talk","status":"transcribing"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Listening and writing down…"_s});
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load(R"([{"id":"j","title":"talk","status":"ready","duration_seconds":60}])");
    EXPECT_EQ(update(), QStringList{u"talk: Done ·  · 1 min"_s});
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_TRUE(m_report.allReady());
}

TEST_F(ReportTest, JobListedBeforeItsStartIsAnsweredIsTheFiles)
{
    load("[]");
    update();
    wait({u"/x/talk.m4a"_s});
    startFirst();
    update();
    load(R"([{"id":"7","title":"talk","status":"ready"}])");
    EXPECT_EQ(update(), QStringList());
    answerStart(true);
    update();
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_EQ(m_report.files().first().jobId, u"7"_s);
    EXPECT_TRUE(m_report.allReady());
}

TEST_F(ReportTest, JobOfSomebodyElseThatAppearsDuringAStartIsNotTheFiles)
{
    load("[]");
    update();
    wait({u"/x/talk.m4a"_s});
    startFirst();
    load(R"([{"id":"foreign","title":"other","status":"ready"}])");
    update();
    answerStart(true);
    update(); // the history is still the one from before the answer
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load(R"([{"id":"j","title":"talk","status":"queued"},{"id":"foreign","title":"other","status":"ready"}])");
    EXPECT_EQ(update(), QStringList{u"talk: Starting…"_s});
    ASSERT_EQ(m_report.files().size(), 1);
    EXPECT_EQ(m_report.files().first().jobId, u"j"_s);
}

TEST_F(ReportTest, JobWithAnotherTitleThatIsListedBeforeTheAnswerIsTakenAfterIt)
{
    load("[]");
    update();
    wait({u"/x/talk.m4a"_s});
    startFirst();
    update();
    load(R"([{"id":"j","title":"A talk about cats","status":"queued"}])");
    update();
    answerStart(true);
    update();
    EXPECT_EQ(m_report.files().first().jobId, u""_s);
    load(R"([{"id":"j","title":"A talk about cats","status":"queued"}])");
    update();
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_EQ(m_report.files().first().jobId, u"j"_s);
}

TEST_F(ReportTest, RefusedFileEndsTheRunWithoutBeingReady)
{
    load("[]");
    wait({u"/x/talk.m4a"_s});
    startFirst();
    update();
    answerStart(false);
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_FALSE(m_report.allReady());
}

TEST_F(ReportTest, RefusedFileThatIsQueuedAgainIsFollowedAnew)
{
    load("[]");
    wait({u"/x/talk.m4a"_s});
    startFirst();
    update();
    answerStart(false);
    wait({u"/x/talk.m4a"_s});
    EXPECT_EQ(update(), QStringList{u"talk: Waiting in line…"_s});
    EXPECT_EQ(m_report.files().size(), 2);
    EXPECT_FALSE(m_report.isFinished(m_jobs));
}

TEST_F(ReportTest, FileTakenWithoutAJobIsGivenUpOnce)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    EXPECT_EQ(giveUp(), QStringList{u"talk: The engine took the file but lists no job for it."_s});
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_FALSE(m_report.allReady());
}

TEST_F(ReportTest, FileWithAJobIsNotGivenUp)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"queued"}])");
    update();
    EXPECT_EQ(giveUp(), QStringList());
}

TEST_F(ReportTest, JobThatLeavesTheHistoryIsGivenUpOnce)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"transcribing"}])");
    update();
    EXPECT_EQ(giveUp(), QStringList());
    load("[]");
    EXPECT_EQ(update(), QStringList());
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    EXPECT_EQ(giveUp(), QStringList{u"talk: The engine no longer lists its job."_s});
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_FALSE(m_report.allReady());
}

TEST_F(ReportTest, JobOfAnEarlierRunThatLeavesTheHistoryIsGivenUp)
{
    load(R"([{"id":"old","title":"old","status":"transcribing"}])");
    update();
    load("[]");
    update();
    EXPECT_EQ(giveUp(), QStringList{u"old: The engine no longer lists its job."_s});
    EXPECT_TRUE(m_report.isFinished(m_jobs));
}

TEST_F(ReportTest, TranscriptThatLeavesTheHistoryStaysReady)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"ready","call_dir":"/calls/talk"}])");
    update();
    load("[]");
    EXPECT_EQ(update(), QStringList());
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_TRUE(m_report.allReady());
    EXPECT_EQ(m_report.files().first().callDir, u"/calls/talk"_s);
}

TEST_F(ReportTest, HiddenJobIsFollowedToItsEnd)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"transcribing"}])");
    update();
    load(R"([{"id":"j","title":"talk","status":"ready","call_dir":"/calls/talk","duration_seconds":60,"hidden":true}])");
    EXPECT_EQ(update(), QStringList{u"talk: Done ·  · 1 min"_s});
    EXPECT_EQ(giveUp(), QStringList());
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_TRUE(m_report.allReady());
}

TEST_F(ReportTest, NotFinishedBeforeTheFirstHistory)
{
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load("[]");
    EXPECT_TRUE(m_report.isFinished(m_jobs));
}

TEST_F(ReportTest, NotFinishedWhileAFileWaitsOrAStartIsUnknown)
{
    load("[]");
    wait({u"/x/talk.m4a"_s});
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    m_jobs.waiting.clear();
    m_jobs.interruptedStart = StartRecord{};
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    m_jobs.interruptedStart.reset();
    m_jobs.starting = true;
    EXPECT_FALSE(m_report.isFinished(m_jobs));
}

TEST_F(ReportTest, PausedAndCancelledJobs)
{
    load("[]");
    update();
    handOver(u"/x/talk.m4a"_s);
    load(R"([{"id":"j","title":"talk","status":"paused"}])");
    update();
    EXPECT_FALSE(m_report.isFinished(m_jobs));
    load(R"([{"id":"j","title":"talk","status":"cancelled"}])");
    update();
    EXPECT_TRUE(m_report.isFinished(m_jobs));
    EXPECT_FALSE(m_report.allReady());
}

} // namespace
