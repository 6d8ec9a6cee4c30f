#include "AppTest.h"

#include "app/Scheduler.h"
#include "list/Rows.h"

#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

class CrashRecovery : public test::AppTest
{
protected:
    void SetUp() override
    {
        m_a = m_engine.recording(u"a.m4a"_s);
        m_b = m_engine.recording(u"b.m4a"_s);
        m_engine.keepBook("ready");
    }
    void TearDown() override { endEarlierCommand(); }

    /// The store as a crash between taking `m_a` off the queue and the engine's answer leaves it.
    void leaveCrash(const std::optional<QJsonArray> &knownJobs = QJsonArray{u"job-1"_s})
    {
        QJsonObject start{{u"path"_s, m_a}, {u"engine"_s, u"whisper"_s}, {u"language"_s, u"uk"_s},
                          {u"speakers"_s, false}, {u"quick"_s, true}};
        if (knownJobs)
            start.insert(u"knownJobs"_s, *knownJobs);
        const QJsonObject waiting{{u"path"_s, m_b}, {u"engine"_s, u"auto"_s}, {u"language"_s, u"en"_s},
                                  {u"speakers"_s, true}, {u"quick"_s, false}};
        QDir().mkpath(QFileInfo(settingsPath()).path());
        test::writeFile(settingsPath(), QJsonDocument(QJsonObject{{u"waitingQueue"_s, QJsonArray{waiting}},
                                                                  {u"startInFlight"_s, start}}).toJson());
    }
    void listJob(int number, const QString &status = u"ready"_s)
    {
        m_engine.setJob(number, {{u"id"_s, u"job-%1"_s.arg(number)}, {u"title"_s, u"a"_s}, {u"status"_s, status}});
    }

    QString startLockPath() const { return settingsPath() + u".start.lock"_s; }
    /// A "process" command of the crashed application that is still at work: it holds the start lock.
    void beginEarlierCommand()
    {
        FileLock lock(startLockPath());
        ASSERT_EQ(lock.tryLock(), FileLock::Result::Held);
        for (const QString &fifo : {u"up"_s, u"down"_s})
            ASSERT_EQ(::mkfifo(QFile::encodeName(m_engine.path(fifo)).constData(), 0600), 0);
        m_earlier = std::thread([up = m_engine.path(u"up"_s), down = m_engine.path(u"down"_s), descriptor = lock.descriptor()] {
            RunAndWait(u"/bin/bash"_s, {u"-c"_s, u"echo up >\"$0\"; read -r word <\"$1\""_s, up, down}, {0, descriptor});
        });
        ASSERT_EQ(test::readFile(m_engine.path(u"up"_s)), "up\n");
    }
    void endEarlierCommand()
    {
        if (!m_earlier.joinable())
            return;
        test::writeFile(m_engine.path(u"down"_s), "end\n");
        m_earlier.join();
    }
    bool lockIsHeldByACommand() const
    {
        FileLock lock(startLockPath());
        return lock.tryLock() == FileLock::Result::Elsewhere;
    }

    QString m_a;
    QString m_b;
    std::thread m_earlier;
};

TEST_F(CrashRecovery, FileWithoutAJobGoesBackToTheHeadAndIsTranscribedOnce)
{
    leaveCrash();
    listJob(1);
    prepare();
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    EXPECT_TRUE(jobs().interruptedStart);
    poll();
    ASSERT_TRUE(processCalls(2));
    ASSERT_TRUE(waitFor([&] { return m_taken.size() == 2; }));
    EXPECT_EQ(m_engine.calls(u"process"_s).first(),
              (QStringList{u"process"_s, m_a, u"--background"_s, u"--engine"_s, u"whisper"_s, u"--language"_s, u"uk"_s,
                           u"--no-clean"_s, u"--no-analyze"_s, u"--no-speakers"_s}));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
    EXPECT_FALSE(settings().contains(u"startInFlight"_s));
}

TEST_F(CrashRecovery, FileWithAJobIsNotStartedAgain)
{
    leaveCrash();
    listJob(1);
    listJob(2);
    prepare();
    poll();
    ASSERT_TRUE(waitFor([&] { return m_taken == QStringList{m_b}; }));
    EXPECT_EQ(processed(), QStringList{m_b});
    EXPECT_FALSE(jobs().interruptedStart);
    EXPECT_FALSE(settings().contains(u"startInFlight"_s));
    EXPECT_TRUE(storedPaths().isEmpty());
}

TEST_F(CrashRecovery, AJobUnderWayOfAnotherFileIsNotTheInterruptedOnes)
{
    leaveCrash();
    listJob(1);
    m_engine.setJob(2, {{u"id"_s, u"job-2"_s}, {u"title"_s, u"another"_s}, {u"status"_s, u"transcribing"_s}});
    prepare();
    poll();
    EXPECT_EQ(waitingPaths(), (QStringList{m_a, m_b}));
    EXPECT_FALSE(jobs().interruptedStart);
}

TEST_F(CrashRecovery, RecordStaysInTheStoreUntilItsFateIsKnown)
{
    leaveCrash();
    m_engine.answerCall(u"history"_s, 1, {"garbage"});
    prepare();
    const QString c = m_engine.recording(u"c.m4a"_s);
    m_app->enqueue({c}, m_choices);
    EXPECT_EQ(storedStart(), m_a);
    EXPECT_EQ(storedPaths(), (QStringList{m_b, c}));
    poll();
    EXPECT_TRUE(jobs().interruptedStart);
    EXPECT_EQ(storedStart(), m_a);
    settle();
    EXPECT_EQ(m_engine.count(u"process"_s), 0);

    listJob(1);
    poll();
    ASSERT_TRUE(processCalls(3));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b, c}));
}

TEST_F(CrashRecovery, WithoutKnownJobsTheFileGoesBack)
{
    leaveCrash(std::nullopt);
    listJob(1);
    prepare();
    poll();
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
}

TEST_F(CrashRecovery, WhileTheEarlierCommandIsAtWorkNothingIsDecided)
{
    leaveCrash();
    listJob(1);
    beginEarlierCommand();
    prepare();
    for (int i = 0; i < 3; ++i)
        poll();
    settle();
    EXPECT_TRUE(jobs().interruptedStart);
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    EXPECT_EQ(m_engine.count(u"process"_s), 0);
    EXPECT_EQ(storedStart(), m_a);
}

TEST_F(CrashRecovery, EarlierCommandThatEndsWithoutAJobGivesTheFileBack)
{
    leaveCrash();
    listJob(1);
    beginEarlierCommand();
    prepare();
    poll();
    ASSERT_TRUE(jobs().interruptedStart);
    endEarlierCommand();
    poll();
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
}

TEST_F(CrashRecovery, AFileWhoseFateIsUnknownIsShownAsBeingPrepared)
{
    leaveCrash();
    listJob(1);
    beginEarlierCommand();
    prepare();
    poll();
    ASSERT_TRUE(jobs().interruptedStart);
    const RowList list = BuildRows(jobs());
    EXPECT_EQ(list.rows.keyAt(0), u"starting"_s);
    EXPECT_EQ(list.counts.active, 1);
    EXPECT_TRUE(BusyExcept(jobs(), {}));
    endEarlierCommand();
    poll();
    ASSERT_TRUE(processCalls(2));
}

TEST_F(CrashRecovery, AFileThatWasAddedAgainMeanwhileIsTranscribedOnce)
{
    leaveCrash();
    listJob(1);
    beginEarlierCommand();
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    endEarlierCommand();
    poll();
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(processed(), (QStringList{m_b, m_a}));
}

TEST_F(CrashRecovery, AFileThatIsGoneMeanwhileIsLeftOutWithoutAWord)
{
    leaveCrash();
    listJob(1);
    QFile::remove(m_a);
    prepare();
    poll();
    ASSERT_TRUE(waitFor([&] { return m_taken == QStringList{m_b}; }));
    EXPECT_EQ(processed(), QStringList{m_b});
}

TEST_F(CrashRecovery, EarlierCommandThatEndsWithAJobHasTakenTheFile)
{
    leaveCrash();
    listJob(1);
    beginEarlierCommand();
    prepare();
    poll();
    ASSERT_TRUE(jobs().interruptedStart);
    listJob(2);
    endEarlierCommand();
    poll();
    ASSERT_TRUE(waitFor([&] { return m_taken == QStringList{m_b}; }));
    EXPECT_EQ(processed(), QStringList{m_b});
}

TEST_F(CrashRecovery, HistoryOlderThanTheEndOfTheEarlierCommandProvesNothing)
{
    leaveCrash();
    listJob(1);
    m_engine.answerCall(u"history"_s, 1, Answer{R"([{"id":"job-1","status":"ready"}])"}.heldAt("history"));
    beginEarlierCommand();
    prepare();
    m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 1; }));
    listJob(2);
    endEarlierCommand();
    m_engine.openGate("history");
    ASSERT_TRUE(pollEnds());
    EXPECT_TRUE(jobs().interruptedStart);
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    poll();
    ASSERT_TRUE(waitFor([&] { return m_taken == QStringList{m_b}; }));
    EXPECT_EQ(processed(), QStringList{m_b});
}

TEST_F(CrashRecovery, CommandHoldsTheStartLockBeyondTheApplication)
{
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(processCalls(1));
    destroy();
    EXPECT_TRUE(lockIsHeldByACommand());
    m_engine.openGate("process");
    EXPECT_TRUE(waitFor([&] { return !lockIsHeldByACommand(); }));
}

TEST_F(CrashRecovery, CommandHoldsTheStartLockAlsoWhenTheEarlierOneHeldItUntilAfterItsJobWasListed)
{
    leaveCrash();
    listJob(1);
    listJob(2, u"transcribing"_s);
    beginEarlierCommand();
    prepare();
    poll();
    ASSERT_FALSE(jobs().interruptedStart);
    endEarlierCommand();
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    listJob(2);
    poll();
    ASSERT_TRUE(processCalls(1));
    destroy();
    EXPECT_TRUE(lockIsHeldByACommand());
    m_engine.openGate("process");
    EXPECT_TRUE(waitFor([&] { return !lockIsHeldByACommand(); }));
}

TEST_F(CrashRecovery, ApplicationThatGoesWhileAStartIsInFlightTranscribesOnce)
{
    m_engine.answer(u"process"_s, Answer::script(R"(wait_for process; locked book_add "$2")"));
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(processCalls(1));
    destroy();

    prepare();
    poll();
    EXPECT_TRUE(jobs().interruptedStart);
    m_engine.openGate("process");
    ASSERT_TRUE(waitFor([&] { return m_engine.jobCount() == 1; }));
    poll();
    ASSERT_TRUE(waitFor([&] {
        if (!jobs().polling)
            m_app->poll();
        return m_engine.jobCount() == 2;
    }));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
}

} // namespace
