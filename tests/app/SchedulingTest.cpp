#include "AppTest.h"

#include "app/Scheduler.h"
#include "engine/DebugLog.h"

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

class Scheduling : public test::AppTest
{
protected:
    void SetUp() override
    {
        m_a = m_engine.recording(u"memo.m4a"_s);
        m_b = m_engine.recording(u"talk.wav"_s);
    }
    static QJsonObject job(int number, const QString &status, bool paused = false)
    {
        return {{u"id"_s, u"job-%1"_s.arg(number)}, {u"status"_s, status}, {u"paused"_s, paused}};
    }
    static QStringList processArguments(const QString &path)
    {
        return {u"process"_s, path, u"--background"_s, u"--engine"_s, u"whisper"_s, u"--language"_s, u"uk"_s,
                u"--no-clean"_s, u"--no-analyze"_s, u"--no-speakers"_s};
    }

    QString m_a;
    QString m_b;
};

TEST_F(Scheduling, TwoFilesOfOneStartGoOneAfterTheOtherWithTheSameOptions)
{
    m_engine.keepBook("queued");
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(processCalls(1));
    ASSERT_TRUE(waitFor([&] { return !jobs().starting; }));
    ASSERT_TRUE(pollEnds());
    EXPECT_EQ(rowKeys(), (QStringList{u"wait:"_s + m_b, u"job-1"_s}));
    for (int i = 0; i < 3; ++i)
        poll();
    EXPECT_EQ(m_engine.count(u"process"_s), 1);

    m_engine.setJob(1, job(1, u"ready"_s));
    poll();
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(m_engine.calls(u"process"_s), (QList<QStringList>{processArguments(m_a), processArguments(m_b)}));
    ASSERT_TRUE(waitFor([&] { return m_taken.size() == 2; }));
    EXPECT_EQ(m_taken, (QStringList{m_a, m_b}));
    EXPECT_TRUE(waitingPaths().isEmpty());
}

TEST_F(Scheduling, FileAlreadyWaitingIsNotQueuedAgainAndKeepsItsOptions)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    m_app->enqueue({m_a, m_b}, {u"auto"_s, u"en"_s, true, false});
    EXPECT_EQ(waitingPaths(), (QStringList{m_a, m_b}));
    EXPECT_EQ(jobs().waiting.first().value(u"engine"_s), QVariant(u"whisper"_s));
    EXPECT_EQ(storedPaths(), (QStringList{m_a, m_b}));
}

TEST_F(Scheduling, StartingRowStandsInForTheFileUntilTheEngineAnswers)
{
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    EXPECT_TRUE(jobs().starting);
    EXPECT_TRUE(SomethingActive(jobs()));
    EXPECT_TRUE(m_app->busyExcept(u"any"_s));
    EXPECT_EQ(rowKeys(), (QStringList{u"starting"_s, u"wait:"_s + m_b}));
    EXPECT_EQ(m_app->rowWithKey(u"starting"_s).value(u"title"_s), QJsonValue(u"Preparing…"_s));
    EXPECT_TRUE(m_app->rowWithKey(u"wait:"_s + m_a).isEmpty());
    poll();
    m_app->startNextIfIdle();
    settle();
    EXPECT_EQ(processed(), QStringList{m_a});
    m_engine.openGate("process");
    EXPECT_TRUE(waitFor([&] { return m_taken.contains(m_a); }));
}

TEST_F(Scheduling, ShortenedQueueAndTheFileInFlightAreStoredWhenTheCommandRuns)
{
    const QByteArray copy = "cp \"$HOME/.config/tuppi-transcriber/settings.json\" \"$root/at-process.json\"";
    m_engine.answer(u"process"_s, Answer::script(copy));
    m_engine.answerHistory(R"([{"id":"old","status":"ready"},{"id":"hidden","status":"ready","hidden":true}])");
    prepare();
    poll();
    m_engine.answer(u"process"_s, Answer::script(copy + "\nwait_for process"));
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(waitFor([&] { return QFile::exists(m_engine.path(u"at-process.json"_s)); }));
    m_engine.openGate("process");
    ASSERT_TRUE(waitFor([&] { return m_taken.contains(m_a); }));

    const QJsonObject atProcess = test::object(test::readFile(m_engine.path(u"at-process.json"_s)));
    EXPECT_EQ(pathsIn(atProcess), QStringList{m_b});
    QJsonObject start = atProcess.value(u"startInFlight"_s).toObject();
    const qint64 startedAt = start.take(u"startedAt"_s).toInteger();
    EXPECT_TRUE(startedAt >= before && startedAt <= QDateTime::currentSecsSinceEpoch()) << startedAt;
    EXPECT_EQ(start, (QJsonObject{{u"path"_s, m_a},
                                  {u"engine"_s, u"whisper"_s},
                                  {u"language"_s, u"uk"_s},
                                  {u"speakers"_s, false},
                                  {u"quick"_s, true},
                                  {u"knownJobs"_s, QJsonArray{u"old"_s, u"hidden"_s}}}));
}

TEST_F(Scheduling, TheStartsOwnJobIsNeverAmongTheKnownOnes)
{
    const QByteArray old = R"({"id":"old","status":"ready"})";
    m_engine.answerHistory('[' + old + ']');
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(processCalls(1));
    m_engine.answerHistory(R"([{"id":"new","status":"queued"},)" + old + ']');
    poll();
    ASSERT_EQ(jobs().history->entries.size(), 2);
    m_app->enqueue({m_b}, m_choices);
    EXPECT_EQ(settings().value(u"startInFlight"_s)[u"knownJobs"_s].toArray(), QJsonArray{u"old"_s});
    m_engine.openGate("process");
}

TEST_F(Scheduling, AHistoryThatArrivesDuringAStartTellsNothingOfBefore)
{
    m_engine.answerHistory("garbage");
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(processCalls(1));
    m_engine.answerHistory(R"([{"id":"new","status":"queued"}])");
    poll();
    ASSERT_TRUE(jobs().loaded);
    m_app->enqueue({m_b}, m_choices);
    EXPECT_EQ(storedStart(), m_a);
    EXPECT_FALSE(settings().value(u"startInFlight"_s).toObject().contains(u"knownJobs"_s));
    m_engine.openGate("process");
}

TEST_F(Scheduling, FileInFlightIsForgottenOnceTheEngineHasAnswered)
{
    m_engine.keepBook("queued");
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    EXPECT_EQ(storedStart(), m_a);
    EXPECT_EQ(storedPaths(), QStringList{m_b});
    ASSERT_TRUE(waitFor([&] { return m_taken.contains(m_a); }));
    EXPECT_EQ(storedPaths(), QStringList{m_b});
    EXPECT_FALSE(settings().contains(u"startInFlight"_s));
}

TEST_F(Scheduling, RefusedFileIsReportedAndNotQueuedAgain)
{
    m_engine.answer(u"process"_s, Answer::failure(1, "Traceback\nError: no space left on the disk\n"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(waitFor([&] { return !m_failures.isEmpty(); }));
    EXPECT_EQ(m_failures, (QList<Failure>{{u"Could not start “memo.m4a”"_s, u"no space left on the disk"_s}}));
    EXPECT_EQ(m_refused, QStringList{m_a});
    EXPECT_TRUE(m_taken.isEmpty());
    EXPECT_TRUE(waitingPaths().isEmpty());
    EXPECT_FALSE(settings().contains(u"startInFlight"_s));
    EXPECT_TRUE(storedPaths().isEmpty());
    poll();
    settle();
    EXPECT_EQ(m_engine.count(u"process"_s), 1);
}

TEST_F(Scheduling, RefusalWithoutATextHasAnEmptyDetail)
{
    m_engine.answer(u"process"_s, Answer::failure(7, ""));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(waitFor([&] { return !m_failures.isEmpty(); }));
    EXPECT_EQ(m_failures.first(), Failure(u"Could not start “memo.m4a”"_s, u""_s));
}

TEST_F(Scheduling, NextFileIsTriedAfterARefusal)
{
    m_engine.keepBook("queued");
    m_engine.answerCall(u"process"_s, 1, Answer::failure(1, "Error: no"));
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(waitFor([&] { return m_taken.contains(m_b); }));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
    EXPECT_EQ(m_refused, QStringList{m_a});
}

TEST_F(Scheduling, PollThatBeganBeforeAFailedStartDoesNotStartTheNextFile)
{
    m_engine.answerCall(u"history"_s, 2, Answer{"[]", {}, 0, {}, R"(echo end >"$root/older")"}.heldAt("older"));
    m_engine.answerCall(u"history"_s, 3, Answer{"[]"}.heldAt("newer"));
    m_engine.answerCall(u"process"_s, 1, Answer::failure(1, "Error: no"));
    prepare();
    poll();
    m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 2; }));
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 3; }));
    EXPECT_EQ(jobs().startGeneration, 1);

    const int polled = m_polled;
    m_engine.openGate("older");
    ASSERT_TRUE(waitFor([&] { return QFile::exists(m_engine.path(u"older"_s)); }));
    settle();
    settle();
    EXPECT_EQ(processed(), QStringList{m_a});
    EXPECT_EQ(m_polled, polled);

    m_engine.openGate("newer");
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
}

TEST_F(Scheduling, NothingIsStartedBeforeAHistoryShowsTheLastStart)
{
    m_engine.keepBook("transcribing");
    for (const int nth : {2, 3, 4})
        m_engine.answerCall(u"history"_s, nth, {"garbage"});
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(waitFor([&] { return m_taken == QStringList{m_a}; }));
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 2; }));
    poll();
    poll();
    settle();
    EXPECT_EQ(m_engine.count(u"history"_s), 4);
    EXPECT_EQ(processed(), QStringList{m_a});

    poll();
    EXPECT_TRUE(SomethingActive(jobs()));
    m_engine.setJob(1, job(1, u"ready"_s));
    poll();
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(processed(), (QStringList{m_a, m_b}));
}

TEST_F(Scheduling, PausedJobKeepsTheQueueFromAdvancingButNotTheUserFromResumingAnother)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing","paused":true}])");
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    for (int i = 0; i < 3; ++i)
        poll();
    settle();
    EXPECT_EQ(m_engine.count(u"process"_s), 0);
    EXPECT_TRUE(SomethingActive(jobs()));
    EXPECT_FALSE(m_app->busyExcept(u"other"_s));
    EXPECT_EQ(m_app->list().summary, u"Paused"_s);
    m_engine.answerHistory(R"([{"id":"j","status":"cancelled"}])");
    poll();
    EXPECT_TRUE(processCalls(1));
}

TEST_F(Scheduling, RemovingAWaitingRowSavesTheQueueAndTheList)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    m_app->removeWaiting(u"wait:"_s + m_a);
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    EXPECT_EQ(storedPaths(), QStringList{m_b});
    EXPECT_EQ(rowKeys(), (QStringList{u"wait:"_s + m_b, u"j"_s}));
}

TEST_F(Scheduling, RemovingARowWhoseFileStandsTwiceRemovesBoth)
{
    const QJsonObject entry{{u"path"_s, m_a}};
    QDir().mkpath(QFileInfo(settingsPath()).path());
    test::writeFile(settingsPath(), QJsonDocument(QJsonObject{{u"waitingQueue"_s,
                        QJsonArray{entry, QJsonObject{{u"path"_s, m_b}}, entry}}}).toJson());
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    ASSERT_EQ(waitingPaths(), (QStringList{m_a, m_b, m_a}));
    m_app->removeWaiting(u"wait:"_s + m_a);
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    EXPECT_EQ(storedPaths(), QStringList{m_b});
}

TEST_F(Scheduling, RemovingARowThatIsNoWaitingRowRemovesNothing)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    const int refreshes = m_refreshes;
    m_app->removeWaiting(u"j"_s);
    m_app->removeWaiting(u"wait:/no/such.m4a"_s);
    m_app->removeWaiting(u""_s);
    EXPECT_EQ(waitingPaths(), QStringList{m_a});
    EXPECT_EQ(m_refreshes, refreshes + 3);
}

TEST_F(Scheduling, QueueSurvivesARestart)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    m_app->enqueue({m_b, m_a}, m_choices);
    const WaitingQueue before = jobs().waiting;
    destroy();
    prepare();
    EXPECT_EQ(jobs().waiting, before);
    EXPECT_EQ(waitingPaths(), (QStringList{m_b, m_a}));
}

TEST_F(Scheduling, QueueThatCannotBeSavedIsToldAndKept)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    test::writeFile(m_engine.home() + u"/.config"_s, "a file where the folder should be");
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    EXPECT_EQ(waitingPaths(), QStringList{m_a});
    EXPECT_TRUE(waitFor([&] {
        return m_app->list().summary == u"The waiting list could not be saved. It is kept until the app quits."_s;
    })) << m_app->list().summary.toStdString();
    EXPECT_FALSE(m_app->keepsQueue());
    EXPECT_TRUE(QString::fromUtf8(test::readFile(DebugLogPath()))
                    .endsWith(u"the waiting queue could not be written to %1\n"_s.arg(settingsPath())));
}

TEST_F(Scheduling, EngineMissingFromTheBeginningKeepsTheFilesAndStartsThemOnceItIsThere)
{
    m_engine.keepBook("queued");
    m_engine.uninstall();
    prepare();
    poll();
    m_app->enqueue({m_a, m_b}, m_choices);
    for (int i = 0; i < 3; ++i)
        poll();
    EXPECT_EQ(waitingPaths(), (QStringList{m_a, m_b}));
    EXPECT_EQ(storedPaths(), (QStringList{m_a, m_b}));
    EXPECT_TRUE(m_failures.isEmpty());
    m_engine.install();
    poll();
    EXPECT_TRUE(waitFor([&] { return m_taken == QStringList{m_a}; }));
}

TEST_F(Scheduling, EngineThatGoesMissingLaterKeepsTheFilesThatWait)
{
    m_engine.keepBook("queued");
    prepare();
    poll();
    m_engine.uninstall();
    m_app->enqueue({m_a, m_b}, m_choices);
    ASSERT_TRUE(waitFor([&] { return m_refused.contains(m_a); }));
    for (int i = 0; i < 3; ++i)
        poll();
    EXPECT_TRUE(jobs().engineBroken);
    EXPECT_FALSE(jobs().starting);
    EXPECT_EQ(m_failures.size(), 1);
    EXPECT_EQ(m_app->list().summary, u"Tuppi's engine could not be found — please run the installer again."_s);
    EXPECT_EQ(waitingPaths(), QStringList{m_b});
    EXPECT_EQ(storedPaths(), QStringList{m_b});
    m_engine.install();
    poll();
    EXPECT_TRUE(waitFor([&] { return m_taken.contains(m_b); }));
}

TEST_F(Scheduling, EngineThatIsMissingLeavesOtherMessagesTheirTime)
{
    m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    m_engine.uninstall();
    poll();
    ASSERT_TRUE(jobs().engineBroken);
    m_app->flash(u"Sounds off"_s);
    poll();
    EXPECT_EQ(m_app->list().summary, u"Sounds off"_s);
}

TEST_F(Scheduling, EngineThatCannotBeFoundAtTheStartItselfIsReported)
{
    prepare();
    poll();
    m_engine.uninstall();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(waitFor([&] { return !m_failures.isEmpty(); }));
    EXPECT_EQ(m_failures.first().first, u"Could not start “memo.m4a”"_s);
    EXPECT_TRUE(m_failures.first().second.contains(m_engine.enginePath())) << m_failures.first().second.toStdString();
}

TEST_F(Scheduling, FilesAddedWhileTheFirstIsInFlightWaitTheirTurn)
{
    m_engine.keepBook("ready");
    m_engine.answerCall(u"process"_s, 1, Answer::script(R"(locked book_add "$2")").heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    m_app->enqueue({m_b}, {u"auto"_s, u"en"_s, true, false});
    EXPECT_EQ(storedPaths(), QStringList{m_b});
    EXPECT_EQ(storedStart(), m_a);
    m_engine.openGate("process");
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(m_engine.calls(u"process"_s).last(), (QStringList{u"process"_s, m_b, u"--background"_s, u"--engine"_s, u"auto"_s,
                                                              u"--language"_s, u"en"_s, u"--speakers"_s}));
}

TEST_F(Scheduling, FileInFlightMayBeQueuedAgain)
{
    m_engine.keepBook("ready");
    m_engine.answerCall(u"process"_s, 1, Answer::script(R"(locked book_add "$2")").heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    m_app->enqueue({m_a}, m_choices);
    EXPECT_EQ(waitingPaths(), QStringList{m_a});
    m_engine.openGate("process");
    ASSERT_TRUE(processCalls(2));
}

TEST_F(Scheduling, TenThousandJobsAndOneMore)
{
    QByteArray history("[");
    for (int i = 0; i < 10'000; ++i)
        history += (i == 0 ? "{\"id\":\"j" : ",{\"id\":\"j") + QByteArray::number(i) + "\",\"status\":\"ready\"}";
    m_engine.answerHistory(history + "]");
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    EXPECT_EQ(rowKeys().size(), 10'000);
    m_app->enqueue({m_a}, m_choices);
    EXPECT_EQ(settings().value(u"startInFlight"_s)[u"knownJobs"_s].toArray().size(), 10'000);
    EXPECT_TRUE(processCalls(1));
}

} // namespace
