#include "AppTest.h"

#include "app/Scheduler.h"

#include <QFileSystemWatcher>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

class MainLoop : public test::AppTest
{
protected:
    /// Ticks that many times, waiting for the poll of each; gives the numbers of the ticks that polled.
    QList<unsigned> tick(int count)
    {
        QList<unsigned> polled;
        for (int i = 0; i < count; ++i) {
            m_app->tick();
            if (jobs().polling)
                polled.append(jobs().pollTick);
            EXPECT_TRUE(pollEnds());
        }
        return polled;
    }
};

TEST_F(MainLoop, PollAsksForTheHistoryAndOnlyThenForTheStatus)
{
    m_engine.answer(u"history"_s, Answer{"[]"}.heldAt("history"));
    prepare();
    m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 1; }));
    settle();
    EXPECT_EQ(m_engine.count(u"status"_s), 0);
    m_engine.openGate("history");
    ASSERT_TRUE(pollEnds());
    EXPECT_EQ(m_engine.calls().last(), (QStringList{u"status"_s, u"--json"_s}));
    EXPECT_TRUE(jobs().loaded);
}

TEST_F(MainLoop, OnePollIsInFlightAtATime)
{
    m_engine.answerCall(u"history"_s, 1, Answer{"[]"}.heldAt("history"));
    m_engine.answerCall(u"status"_s, 1, Answer{"{}"}.heldAt("status"));
    prepare();
    m_app->watchEngineState();
    for (int i = 0; i < 3; ++i)
        m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 1; }));
    m_app->poll();
    m_engine.openGate("history");
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"status"_s) == 1; }));
    m_app->poll();
    m_app->tick();
    m_engine.openGate("status");
    poll();
    EXPECT_EQ(m_engine.count(u"history"_s), 2);
    EXPECT_EQ(m_engine.count(u"status"_s), 2);
}

TEST_F(MainLoop, AChangeInTheEnginesFolderStartsNoSecondPoll)
{
    m_engine.answerCall(u"history"_s, 1, Answer{"[]"}.heldAt("history"));
    m_engine.answerCall(u"status"_s, 1, Answer{"{}"}.heldAt("status"));
    prepare();
    m_app->watchEngineState();
    QFileSystemWatcher watch({m_engine.stateFolder()});
    const QSignalSpy changed(&watch, &QFileSystemWatcher::directoryChanged);
    m_app->poll();
    for (const QString &held : {u"history"_s, u"status"_s}) {
        ASSERT_TRUE(waitFor([&] { return m_engine.count(held) == 1; }));
        const qsizetype before = changed.count();
        m_engine.touchState();
        ASSERT_TRUE(waitFor([&] { return changed.count() > before; }));
        settle();
        EXPECT_EQ(m_engine.count(u"history"_s), 1);
        m_engine.openGate(held.toUtf8());
    }
    ASSERT_TRUE(pollEnds());
}

class OlderPoll : public MainLoop, public testing::WithParamInterface<const char *>
{
protected:
    /// Sends a poll out whose reply to the parameter's command is held back, and then pauses the job that it sees
    /// at work.
    void pauseBehindAnOlderPoll()
    {
        const QString held = QString::fromLatin1(GetParam());
        const QByteArray working = R"([{"id":"a","status":"transcribing"}])";
        const QByteArray library = R"({"library":"/old"})";
        m_engine.answerHistory(working);
        m_engine.answerStatus(library);
        prepare();
        poll();
        const int asked = m_engine.count(held);
        m_engine.answerCall(held, asked + 1,
                            Answer{held == u"history"_s ? working : library}.heldAt("older"));
        m_app->poll();
        ASSERT_TRUE(waitFor([&] { return m_engine.count(held) == asked + 1; }));
        m_engine.answerHistory(R"([{"id":"a","status":"transcribing","paused":true}])");
        m_engine.answerStatus(R"({"library":"/new"})");
        m_app->pauseRow(u"a"_s);
    }
    void letTheOlderPollEnd()
    {
        ASSERT_TRUE(m_engine.letPass("older"));
        settle();
        settle();
    }
    bool isPaused() const { return m_app->rowWithKey(u"a"_s)[u"paused"_s].toBool(); }
};

TEST_P(OlderPoll, ThatEndsLastChangesNothing)
{
    pauseBehindAnOlderPoll();
    ASSERT_TRUE(waitFor([&] { return isPaused() && !jobs().polling; }));
    letTheOlderPollEnd();
    ASSERT_TRUE(pollEnds());
    EXPECT_TRUE(isPaused());
    EXPECT_EQ(jobs().library, u"/new"_s);
}

TEST_P(OlderPoll, DoesNotEndTheNewerOne)
{
    m_engine.answerCall(u"pause"_s, 1, Answer().heldAt("pause"));
    pauseBehindAnOlderPoll();
    m_engine.answerCall(u"history"_s, m_engine.count(u"history"_s) + 1, Answer{"[]"}.heldAt("newer"));
    m_engine.openGate("pause");
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 3; }));
    letTheOlderPollEnd();
    EXPECT_TRUE(jobs().polling);
    EXPECT_EQ(rowKeys(), QStringList{u"a"_s});
    m_engine.openGate("newer");
    ASSERT_TRUE(pollEnds());
    EXPECT_TRUE(rowKeys().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(HeldBackAt, OlderPoll, testing::Values("history", "status"),
                         [](const auto &given) { return std::string(given.param); });

TEST_F(MainLoop, IdleItPollsEveryFifthTickOnceLoaded)
{
    prepare();
    EXPECT_EQ(tick(1), QList<unsigned>{1});
    ASSERT_TRUE(jobs().loaded);
    EXPECT_EQ(tick(20), (QList<unsigned>{5, 10, 15, 20}));
    settle();
    EXPECT_EQ(m_engine.count(u"resume"_s), 0);
}

TEST_F(MainLoop, BeforeTheFirstHistoryItPollsEveryTick)
{
    m_engine.answerHistory("garbage");
    prepare();
    EXPECT_EQ(tick(7), (QList<unsigned>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_FALSE(jobs().loaded);
}

TEST_F(MainLoop, WithAJobActiveItPollsEveryTickAndResumesAtTheFifteenthAndThirtieth)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    tick(14);
    settle();
    EXPECT_EQ(m_engine.count(u"resume"_s), 0);
    EXPECT_EQ(tick(1), QList<unsigned>{15});
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"resume"_s) == 1; }));
    EXPECT_EQ(tick(15).size(), 15);
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"resume"_s) == 2; }));
    settle();
    EXPECT_EQ(m_engine.count(u"resume"_s), 2);
}

TEST_F(MainLoop, WithAFileWaitingItResumesToo)
{
    m_engine.uninstall();
    prepare();
    poll();
    m_app->enqueue({m_engine.recording(u"a.m4a"_s)}, m_choices);
    tick(14);
    m_engine.answerHistory("garbage");
    m_engine.install();
    m_app->tick();
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"resume"_s) == 1; }));
}

TEST_F(MainLoop, NoResumeWhileAStartIsInFlight)
{
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_engine.recording(u"a.m4a"_s)}, m_choices);
    EXPECT_EQ(tick(29).size(), 29);
    ASSERT_TRUE(jobs().starting);
    settle();
    EXPECT_EQ(m_engine.count(u"resume"_s), 0);
}

TEST_F(MainLoop, ChangeInTheEnginesFolderPolls)
{
    prepare();
    m_app->watchEngineState();
    poll();
    EXPECT_EQ(m_engine.count(u"history"_s), 1);
    m_engine.touchState();
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 2; }));
    ASSERT_TRUE(pollEnds());
    m_engine.touchState();
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 3; }));
}

TEST_F(MainLoop, FolderThatAppearsLaterIsWatchedFromTheNextTick)
{
    ASSERT_TRUE(QDir(m_engine.stateFolder()).removeRecursively());
    prepare();
    m_app->watchEngineState();
    m_engine.install();
    poll();
    ASSERT_TRUE(jobs().loaded);
    m_app->tick();
    EXPECT_FALSE(jobs().polling);
    const int before = m_engine.count(u"history"_s);
    m_engine.touchState();
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) > before; }));
}

TEST_F(MainLoop, FolderThatWasDeletedIsWatchedAgain)
{
    prepare();
    m_app->watchEngineState();
    poll();
    ASSERT_TRUE(QDir(m_engine.stateFolder()).removeRecursively());
    ASSERT_TRUE(waitFor([&] { return jobs().engineBroken || !jobs().polling; }));
    m_engine.install();
    poll();
    const int before = m_engine.count(u"history"_s);
    EXPECT_TRUE(waitFor([&] {
        m_app->watchEngineState();
        m_engine.touchState();
        return m_engine.count(u"history"_s) > before;
    }));
}

TEST_F(MainLoop, MissingEngineIsBrokenAndComesBack)
{
    m_engine.uninstall();
    prepare();
    poll();
    EXPECT_TRUE(jobs().engineBroken);
    EXPECT_FALSE(jobs().loaded);
    EXPECT_EQ(m_app->list().summary, u"Tuppi's engine could not be found — please run the installer again."_s);
    m_engine.install();
    poll();
    EXPECT_FALSE(jobs().engineBroken);
    EXPECT_TRUE(jobs().loaded);
    EXPECT_EQ(m_app->list().summary, u"No transcriptions"_s);
}

TEST_F(MainLoop, ArrayWithStatus127IsUsable)
{
    m_engine.answer(u"history"_s, {R"([{"id":"a","status":"ready"}])", {}, 127});
    prepare();
    poll();
    EXPECT_FALSE(jobs().engineBroken);
    EXPECT_EQ(rowKeys(), QStringList{u"a"_s});
}

TEST_F(MainLoop, FailingHistoryOfAPresentEngineIsNotBroken)
{
    m_engine.answer(u"history"_s, Answer::failure(1, "Error: database is locked"));
    prepare();
    poll();
    EXPECT_FALSE(jobs().engineBroken);
    EXPECT_FALSE(jobs().loaded);
}

class UnusableHistory : public MainLoop, public testing::WithParamInterface<Answer>
{
};

TEST_P(UnusableHistory, KeepsTheLastGoodState)
{
    m_engine.answerCall(u"history"_s, 1, {R"([{"id":"a","status":"ready"},{"id":"b","status":"queued"}])"});
    m_engine.answerCall(u"history"_s, 2, GetParam());
    prepare();
    poll();
    const int polled = m_polled, refreshes = m_refreshes;
    poll();
    EXPECT_TRUE(jobs().loaded);
    EXPECT_EQ(jobs().history->entries.size(), 2);
    EXPECT_EQ(rowKeys(), (QStringList{u"b"_s, u"a"_s}));
    EXPECT_EQ(m_rowChanges, 1);
    EXPECT_EQ(m_polled, polled);
    EXPECT_GT(m_refreshes, refreshes);
}

INSTANTIATE_TEST_SUITE_P(MainLoop, UnusableHistory,
                         testing::Values(Answer{""}, Answer{"garbage"}, Answer{R"([{"id":"a","sta)"}, Answer{"{}"},
                                         Answer{"null"}, Answer{"[{\"id\":\"a\",\"title\":\"\xff\"}]"},
                                         Answer::failure(1, "Error: no"), Answer::script("kill -KILL $$")));

TEST_F(MainLoop, StatusWithoutLatestJobSetsItAbsent)
{
    m_engine.answerCall(u"status"_s, 1, {R"({"latest_job":{"id":"a","progress":"5%"},"library":"/calls"})"});
    m_engine.answerCall(u"status"_s, 2, {R"({"latest_job":null,"library":null})"});
    prepare();
    poll();
    EXPECT_EQ(jobs().latestJob, test::object(R"({"id":"a","progress":"5%"})"));
    EXPECT_EQ(jobs().library, u"/calls"_s);
    poll();
    EXPECT_EQ(jobs().latestJob, std::nullopt);
    EXPECT_EQ(jobs().library, u""_s);
}

TEST_F(MainLoop, StatusObjectWithoutTheFieldsSetsThemAbsent)
{
    m_engine.answerCall(u"status"_s, 1, {R"({"latest_job":{"id":"a"},"library":"/calls"})"});
    m_engine.answerCall(u"status"_s, 2, {"{}"});
    prepare();
    poll();
    poll();
    EXPECT_EQ(jobs().latestJob, std::nullopt);
    EXPECT_EQ(jobs().library, u""_s);
}

TEST_F(MainLoop, UnusableStatusLeavesBothUnchanged)
{
    m_engine.answerCall(u"status"_s, 1, {R"({"latest_job":{"id":"a"},"library":"/calls"})"});
    m_engine.answerCall(u"status"_s, 2, {"[]"});
    m_engine.answerCall(u"status"_s, 3, Answer::failure(1, "Error: no"));
    prepare();
    for (int i = 0; i < 3; ++i)
        poll();
    EXPECT_EQ(jobs().latestJob, test::object(R"({"id":"a"})"));
    EXPECT_EQ(jobs().library, u"/calls"_s);
}

TEST_F(MainLoop, EntryWithoutIdIsNeverPartOfTheHistory)
{
    m_engine.answerHistory(R"([{"status":"transcribing"},{"id":null,"status":"queued"},{"id":"a","status":"ready"}])");
    prepare();
    poll();
    EXPECT_EQ(jobs().history->entries.size(), 1);
    EXPECT_EQ(rowKeys(), QStringList{u"a"_s});
    EXPECT_FALSE(SomethingActive(jobs()));
}

TEST_F(MainLoop, FiftyMegabytesOfHistoryAreRead)
{
    m_engine.answerHistory(R"([{"id":"a","status":"ready","title":")" + QByteArray(50 * 1024 * 1024, 'x') + R"("}])");
    prepare();
    poll();
    ASSERT_TRUE(jobs().loaded);
    EXPECT_EQ(jobs().history->entries.first().value(u"title"_s).toString().size(), 50 * 1024 * 1024);
}

TEST_F(MainLoop, FiftyMegabytesOfGarbageAreIgnored)
{
    m_engine.answerCall(u"history"_s, 1, {R"([{"id":"a","status":"ready"}])"});
    m_engine.answerCall(u"history"_s, 2, {QByteArray(50 * 1024 * 1024, '[')});
    prepare();
    poll();
    poll();
    EXPECT_EQ(rowKeys(), QStringList{u"a"_s});
}

TEST_F(MainLoop, UnchangedRepliesLeaveTheRowsAlone)
{
    m_engine.answerHistory(R"([{"id":"a","status":"ready"}])");
    prepare();
    for (int i = 0; i < 3; ++i)
        poll();
    EXPECT_EQ(m_rowChanges, 1);
    EXPECT_EQ(m_polled, 3);
    m_engine.answerHistory(R"([{"id":"a","status":"ready","hidden":false}])");
    poll();
    EXPECT_EQ(m_rowChanges, 2);
}

TEST_F(MainLoop, NewProgressChangesTheRows)
{
    m_engine.answerHistory(R"([{"id":"a","status":"transcribing"}])");
    m_engine.answerStatus(R"({"latest_job":{"id":"a","progress":"5%"}})");
    prepare();
    poll();
    m_engine.answerStatus(R"({"latest_job":{"id":"a","progress":"6%"}})");
    poll();
    EXPECT_EQ(m_rowChanges, 2);
}

TEST_F(MainLoop, RowsAreFoundByTheirKeyInWhatIsShown)
{
    m_engine.answerHistory(R"([{"id":"a","status":"ready","title":"t"}])");
    prepare();
    poll();
    EXPECT_EQ(m_app->rowWithKey(u"a"_s).value(u"title"_s), QJsonValue(u"t"_s));
    EXPECT_TRUE(m_app->rowWithKey(u"b"_s).isEmpty());
    EXPECT_TRUE(m_app->rowWithKey(u""_s).isEmpty());
}

TEST_F(MainLoop, TransientMessageStaysThroughRefreshesAndGivesWayToTheSummary)
{
    m_engine.answerHistory(R"([{"id":"a","status":"ready"}])");
    prepare();
    poll();
    const int rowChanges = m_rowChanges;
    m_app->flash(u"Copied"_s);
    EXPECT_EQ(m_app->list().summary, u"Copied"_s);
    m_app->refresh();
    EXPECT_EQ(m_app->list().summary, u"Copied"_s);
    EXPECT_EQ(m_summaries.last(), u"Copied"_s);
    EXPECT_TRUE(waitFor([&] {
        m_app->refresh();
        return m_app->list().summary == u"1 transcript"_s;
    }));
    EXPECT_EQ(m_summaries.last(), u"1 transcript"_s);
    EXPECT_EQ(m_rowChanges, rowChanges);
}

TEST_F(MainLoop, FailureOfStatusZeroIsNone)
{
    prepare();
    m_app->reportFailure(0, u"Error: x"_s, u"title"_s);
    EXPECT_TRUE(m_failures.isEmpty());
    m_app->reportFailure(1, u"first\nError: second\n"_s, u"title"_s);
    m_app->reportFailure(-1, u""_s, u"title"_s);
    EXPECT_EQ(m_failures, (QList<Failure>{{u"title"_s, u"second"_s}, {u"title"_s, u""_s}}));
}

} // namespace
