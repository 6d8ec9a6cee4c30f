#include "engine/RunCallTimeout.h"

#include "support/ScriptedEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <memory>

#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

bool refuseHandles = false;

} // namespace

/// In place of the library's own: a system may give no handle on a process.
extern "C" int pidfd_open(pid_t pid, unsigned int flags) noexcept
{
    if (!refuseHandles)
        return int(::syscall(SYS_pidfd_open, pid, flags));
    errno = ENOSYS;
    return -1;
}

namespace {

class RunCallTest : public testing::Test
{
protected:
    void run(const QStringList &arguments, double limit = 0)
    {
        RunCallTimeout(
            arguments, &m_context,
            [this, arguments](const EngineReply &reply) {
                m_finished.append(arguments.value(0));
                m_replies.append(reply);
            },
            limit);
    }
    EngineReply replyTo(const QStringList &arguments, double limit = 0)
    {
        const qsizetype before = m_replies.size();
        run(arguments, limit);
        EXPECT_TRUE(waitFor([&] { return m_replies.size() > before; }));
        return m_replies.isEmpty() ? EngineReply() : m_replies.last();
    }
    /// The process id that a script of the engine has put into a file.
    qint64 pidIn(const QString &name)
    {
        QByteArray pid;
        EXPECT_TRUE(waitFor([&] {
            pid = test::readFile(m_engine.path(name));
            return pid.endsWith('\n');
        }));
        return pid.trimmed().toLongLong();
    }
    /// Whether that process has ended, waited for by its parent or not.
    static bool hasEnded(qint64 pid)
    {
        const QByteArray stat = test::readFile(u"/proc/%1/stat"_s.arg(pid));
        return stat.isEmpty() || stat.mid(stat.lastIndexOf(')') + 2, 1) == "Z";
    }

    test::ScriptedEngine m_engine;
    QObject m_context;
    QStringList m_finished;
    QList<EngineReply> m_replies;
};

TEST_F(RunCallTest, StatusAndBothStreamsAreDelivered)
{
    m_engine.answer(u"doctor"_s, {"out — вихід\n", "err\n", 3});
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, 3);
    EXPECT_EQ(reply.out, u"out — вихід\n"_s);
    EXPECT_EQ(reply.err, u"err\n"_s);
}

TEST_F(RunCallTest, EmptyOutputIsAnEmptyText)
{
    const EngineReply reply = replyTo({u"pause"_s, u"a"_s});
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.out, u""_s);
    EXPECT_EQ(reply.err, u""_s);
}

TEST_F(RunCallTest, EngineFileNeedsNoExecutePermission)
{
    ASSERT_TRUE(QFile::setPermissions(m_engine.enginePath(), QFile::ReadOwner));
    EXPECT_EQ(replyTo({u"resume"_s}).status, 0);
    EXPECT_EQ(m_engine.count(u"resume"_s), 1);
}

TEST_F(RunCallTest, EnginePathFollowsTheHomeOfEachCall)
{
    EXPECT_EQ(EnginePath(), m_engine.home() + u"/Library/Application Support/Larkspire/runtime/call"_s);
    const test::HomeFolder other(m_engine.path(u"other"_s));
    EXPECT_EQ(EnginePath(), m_engine.path(u"other/Library/Application Support/Larkspire/runtime/call"_s));
}

TEST_F(RunCallTest, ArgumentsArriveVerbatim)
{
    const QStringList arguments{u"rename"_s,     u""_s,          u" "_s,          u"a b"_s,      u"it's \"quoted\""_s,
                                u"two\nlines\n"_s, u"tab\there"_s, u"$HOME $(id) `id`"_s, u"*"_s, u"~"_s,
                                u"\\ \\n %s %@"_s, u"--"_s,        u"-n"_s,         u"Київ 漢字 😀"_s, u"e\u0301"_s,
                                u"; rm -rf x &"_s, u""_s};
    EXPECT_EQ(replyTo(arguments).status, 0);
    EXPECT_EQ(m_engine.calls(), QList<QStringList>{arguments});
}

TEST_F(RunCallTest, LongArgumentsArriveVerbatim)
{
    const QString text(60'000, u'я');
    EXPECT_EQ(replyTo({u"edit"_s, text}).status, 0);
    EXPECT_TRUE(m_engine.calls().value(0).value(1) == text);
}

TEST_F(RunCallTest, NoArgumentsAtAll)
{
    EXPECT_EQ(replyTo({}).status, 2);
    EXPECT_EQ(m_engine.calls(), QList<QStringList>{QStringList()});
}

TEST_F(RunCallTest, EnvironmentAndWorkingFolderAreInherited)
{
    m_engine.answer(u"doctor"_s, Answer::script(R"(printf '%s|%s' "$TUPPI_TEST_WORD" "$PWD")"));
    const test::Environment word("TUPPI_TEST_WORD", "handed on");
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.out, u"handed on|"_s + QDir::currentPath());
}

TEST_F(RunCallTest, TheEnvironmentIsThatOfTheMomentOfTheCall)
{
    const test::Environment word("TUPPI_TEST_WORD", "then");
    RunOptions options;
    options.before = [] { qputenv("TUPPI_TEST_WORD", "later"); }; // on the thread that runs the command
    const RawReply reply = RunAndWait(u"/bin/bash"_s, {u"-c"_s, u"printf %s \"$TUPPI_TEST_WORD\""_s}, options);
    EXPECT_EQ(reply.out, "then");
}

TEST_F(RunCallTest, CompletionRunsOnTheMainThread)
{
    QThread *thread = nullptr;
    RunCallTimeout({u"resume"_s}, &m_context, [&](const EngineReply &) { thread = QThread::currentThread(); }, 0);
    EXPECT_EQ(thread, nullptr);
    ASSERT_TRUE(waitFor([&] { return thread != nullptr; }));
    EXPECT_EQ(thread, QCoreApplication::instance()->thread());
}

TEST_F(RunCallTest, AbsentCompletionStillRunsToTheEnd)
{
    m_engine.answer(u"resume"_s, {QByteArray(200'000, 'x'), {}, 0, {}, R"(echo end >"$root/ended")"});
    RunCallTimeout({u"resume"_s}, &m_context, {}, 0);
    EXPECT_TRUE(waitFor([&] { return test::readFile(m_engine.path(u"ended"_s)) == "end\n"; }));
}

TEST_F(RunCallTest, StderrLargerThanAPipeBufferWithEmptyStdout)
{
    const QByteArray err(1'000'000, 'e');
    m_engine.answer(u"doctor"_s, {{}, err});
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.out, u""_s);
    EXPECT_EQ(reply.err.size(), err.size());
}

TEST_F(RunCallTest, BothStreamsLargerThanAPipeBuffer)
{
    m_engine.answer(u"doctor"_s, Answer::script("for i in {1..40}; do printf '%10000s' o; printf '%10000s' e >&2; done"));
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.out.size(), 400'000);
    EXPECT_EQ(reply.err.size(), 400'000);
}

TEST_F(RunCallTest, FiftyMegabytesArriveWhole)
{
    constexpr qsizetype size = 50 * 1024 * 1024;
    m_engine.answer(u"doctor"_s, Answer::script("head -c 52428800 /dev/zero | tr '\\0' x"));
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.out.size(), size);
    EXPECT_EQ(reply.out.count(u'x'), size);
}

TEST_F(RunCallTest, NotUtf8IsAnEmptyTextAndTheRestIsDelivered)
{
    m_engine.answer(u"doctor"_s, {"good \xff bad", "err", 2});
    EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, 2);
    EXPECT_EQ(reply.out, u""_s);
    EXPECT_EQ(reply.err, u"err"_s);

    m_engine.answer(u"doctor"_s, {"out", "cut off \xd1", 2});
    reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, 2);
    EXPECT_EQ(reply.out, u"out"_s);
    EXPECT_EQ(reply.err, u""_s);
}

TEST_F(RunCallTest, MissingEngineFileIs127WithAText)
{
    m_engine.uninstall();
    const EngineReply reply = replyTo({u"history"_s, u"--json"_s});
    EXPECT_EQ(reply.status, 127);
    EXPECT_EQ(reply.out, u""_s);
    EXPECT_TRUE(reply.err.contains(m_engine.enginePath())) << reply.err.toStdString();
}

TEST_F(RunCallTest, MissingInterpreterIsMinusOneWithAText)
{
    const RawReply reply = RunAndWait(m_engine.path(u"no such shell"_s), {u"x"_s}, {});
    EXPECT_EQ(reply.status, -1);
    EXPECT_EQ(reply.out, QByteArray());
    EXPECT_EQ(reply.err, QByteArray("No such file or directory"));
}

TEST_F(RunCallTest, InterpreterThatMayNotBeRunIsMinusOneWithAText)
{
    const RawReply reply = RunAndWait(m_engine.home(), {}, {});
    EXPECT_EQ(reply.status, -1);
    EXPECT_EQ(reply.err, QByteArray("Permission denied"));
}

TEST_F(RunCallTest, EndBySignalIsTheSignalsNumberWithWhatWasWritten)
{
    m_engine.answer(u"doctor"_s, {"so far", {}, 0, {}, "kill -KILL $$"});
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, SIGKILL);
    EXPECT_EQ(reply.out, u"so far"_s);
}

TEST_F(RunCallTest, LimitTerminatesAndTheCompletionArrivesOnceWithPartialOutput)
{
    m_engine.answer(u"history"_s, {"partial", "warning", 0, {}, "hang"});
    run({u"history"_s}, 2);
    ASSERT_TRUE(waitFor([&] { return !m_replies.isEmpty(); }));
    EXPECT_EQ(m_replies.first().status, SIGTERM);
    EXPECT_EQ(m_replies.first().out, u"partial"_s);
    EXPECT_EQ(m_replies.first().err, u"warning"_s);
    replyTo({u"resume"_s});
    EXPECT_EQ(m_finished, (QStringList{u"history"_s, u"resume"_s}));
}

TEST_F(RunCallTest, LimitEndsWhatTheEngineStartedToo)
{
    m_engine.answer(u"history"_s, Answer::script("hang & echo $! >\"$root/child\"; wait"));
    run({u"history"_s}, 2);
    const qint64 child = pidIn(u"child"_s);
    ASSERT_TRUE(waitFor([&] { return !m_replies.isEmpty(); }));
    EXPECT_EQ(m_replies.first().status, SIGTERM);
    EXPECT_TRUE(waitFor([&] { return hasEnded(child); }));
}

TEST_F(RunCallTest, LimitOfZeroOrLessNeverTerminates)
{
    m_engine.answer(u"resume"_s, Answer{"whole"}.heldAt("gate"));
    m_engine.answer(u"pause"_s, Answer{"whole"}.heldAt("gate"));
    m_engine.answer(u"history"_s, Answer::script("hang"));
    run({u"resume"_s}, 0);
    run({u"pause"_s}, -1);
    run({u"history"_s}, 0.5);
    ASSERT_TRUE(waitFor([&] { return !m_replies.isEmpty(); }));
    EXPECT_EQ(m_finished, QStringList{u"history"_s});
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return m_replies.size() == 3; }));
    for (const EngineReply &reply : m_replies.sliced(1)) {
        EXPECT_EQ(reply.status, 0);
        EXPECT_EQ(reply.out, u"whole"_s);
    }
}

TEST_F(RunCallTest, LimitThatIsNotReachedChangesNothing)
{
    m_engine.answer(u"history"_s, {"[]", {}, 5});
    const EngineReply reply = replyTo({u"history"_s}, 60);
    EXPECT_EQ(reply.status, 5);
    EXPECT_EQ(reply.out, u"[]"_s);
}

TEST_F(RunCallTest, EngineThatIgnoresSigtermIsAwaitedPastTheLimit)
{
    m_engine.answer(u"history"_s, {"whole", {}, 4, "trap '' TERM\nwait_for gate", {}});
    m_engine.answer(u"doctor"_s, Answer::script("hang"));
    run({u"history"_s}, 2);
    run({u"doctor"_s}, 2.5);
    ASSERT_TRUE(waitFor([&] { return !m_replies.isEmpty(); }));
    EXPECT_EQ(m_finished, QStringList{u"doctor"_s});
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return m_replies.size() == 2; }));
    EXPECT_EQ(m_replies.last().status, 4);
    EXPECT_EQ(m_replies.last().out, u"whole"_s);
}

TEST_F(RunCallTest, CompletionsComeInTheOrderOfFinishing)
{
    for (const QString &name : {u"resume"_s, u"pause"_s, u"doctor"_s}) {
        m_engine.answer(name, Answer().heldAt(name.toUtf8()));
        run({name});
    }
    for (const QString &name : {u"doctor"_s, u"resume"_s, u"pause"_s}) {
        const qsizetype before = m_replies.size();
        m_engine.openGate(name.toUtf8());
        ASSERT_TRUE(waitFor([&] { return m_replies.size() > before; }));
    }
    EXPECT_EQ(m_finished, (QStringList{u"doctor"_s, u"resume"_s, u"pause"_s}));
}

TEST_F(RunCallTest, WhatAGrandchildWritesAfterBashHasEndedIsDelivered)
{
    m_engine.answer(u"doctor"_s, {"early ", {}, 0, {},
                                  "(wait_for late; printf 'late'; printf 'later' >&2) & echo $$ >\"$root/bash\""});
    run({u"doctor"_s});
    const qint64 bash = pidIn(u"bash"_s);
    ASSERT_TRUE(waitFor([&] { return hasEnded(bash); }));
    EXPECT_TRUE(m_replies.isEmpty());
    m_engine.openGate("late");
    ASSERT_TRUE(waitFor([&] { return !m_replies.isEmpty(); }));
    EXPECT_EQ(m_replies.first().status, 0);
    EXPECT_EQ(m_replies.first().out, u"early late"_s);
    EXPECT_EQ(m_replies.first().err, u"later"_s);
}

TEST_F(RunCallTest, HangingGrandchildThatKeepsThePipesDoesNotHoldTheReplyPastTheLimit)
{
    m_engine.answer(u"history"_s, {"all of it", {}, 0, {}, "hang &"});
    const EngineReply reply = replyTo({u"history"_s}, 2);
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.out, u"all of it"_s);
}

class WithoutAHandle : public RunCallTest
{
protected:
    void SetUp() override { refuseHandles = true; }
    void TearDown() override { refuseHandles = false; }
};

TEST_F(WithoutAHandle, TheReplyIsTheSame)
{
    m_engine.answer(u"doctor"_s, {QByteArray(200'000, 'x'), "err\n", 3});
    const EngineReply reply = replyTo({u"doctor"_s});
    EXPECT_EQ(reply.status, 3);
    EXPECT_EQ(reply.out.size(), 200'000);
    EXPECT_EQ(reply.err, u"err\n"_s);
}

TEST_F(WithoutAHandle, TheLimitEndsWhatHangs)
{
    for (const QByteArray &closing : {QByteArray(), QByteArray("exec >&- 2>&-\n")}) {
        m_engine.answer(u"history"_s, {"so far", {}, 0, {}, closing + "hang"});
        const EngineReply reply = replyTo({u"history"_s}, 3);
        EXPECT_EQ(reply.status, SIGTERM);
        EXPECT_EQ(reply.out, u"so far"_s);
    }
}

TEST_F(WithoutAHandle, AGrandchildThatKeepsThePipesDoesNotHoldTheReplyPastTheLimit)
{
    m_engine.answer(u"history"_s, {"all of it", {}, 0, {}, "hang &"});
    const EngineReply reply = replyTo({u"history"_s}, 3);
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.out, u"all of it"_s);
}

TEST_F(RunCallTest, ContextDestroyedBeforeTheReplyIsNotCalled)
{
    bool called = false;
    m_engine.answer(u"doctor"_s, {"x", {}, 0, "wait_for gate", R"(echo end >"$root/ended")"});
    auto context = std::make_unique<QObject>();
    RunCallTimeout({u"doctor"_s}, context.get(), [&](const EngineReply &) { called = true; }, 0);
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"doctor"_s) == 1; }));
    context.reset();
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return !test::readFile(m_engine.path(u"ended"_s)).isEmpty(); }));
    replyTo({u"resume"_s});
    EXPECT_FALSE(called);
}

TEST_F(RunCallTest, ManyRunsAtOnceKeepTheirReplies)
{
    constexpr int runs = 60;
    QHash<int, QString> outs;
    m_engine.answer(u"doctor"_s, {{}, {}, 0, "wait_for all\nprintf '%s' \"$2\"", {}});
    const int descriptors = test::openDescriptors();
    for (int i = 0; i < runs; ++i)
        RunCallTimeout({u"doctor"_s, QString::number(i)}, &m_context, [&outs, i](const EngineReply &reply) { outs.insert(i, reply.out); }, 0);
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"doctor"_s) == runs; }));
    m_engine.openGate("all");
    ASSERT_TRUE(waitFor([&] { return outs.size() == runs; }));
    for (int i = 0; i < runs; ++i)
        EXPECT_EQ(outs.value(i), QString::number(i));
    EXPECT_TRUE(waitFor([&] { return test::openDescriptors() <= descriptors; })) << test::openDescriptors();
}

TEST_F(RunCallTest, DescriptorsDoNotLeak)
{
    replyTo({u"resume"_s});
    const int before = test::openDescriptors();
    m_engine.answer(u"doctor"_s, {"x", {}, 0, {}, "kill -KILL $$"});
    for (int i = 0; i < 10; ++i) {
        replyTo({u"resume"_s});
        replyTo({u"doctor"_s});
        RunAndWait(m_engine.path(u"no such shell"_s), {}, {});
    }
    EXPECT_EQ(test::openDescriptors(), before);
}

TEST_F(RunCallTest, ARunDoesNotHoldThePipesOfAnother)
{
    const QByteArray list = "cd /proc/$$/fd && echo *";
    m_engine.answer(u"doctor"_s, Answer::script(list));
    m_engine.answer(u"history"_s, Answer().heldAt("gate"));
    const QString alone = replyTo({u"doctor"_s}).out;
    run({u"history"_s});
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == 1; }));
    EXPECT_EQ(replyTo({u"doctor"_s}).out, alone);
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([&] { return m_finished.contains(u"history"_s); }));
}

TEST_F(RunCallTest, EngineIsReachedBySignalsThatTheApplicationBlocksOrIgnores)
{
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGINT);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const auto ignored = std::signal(SIGPIPE, SIG_IGN);
    const auto restore = qScopeGuard([&] {
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        std::signal(SIGPIPE, ignored);
    });
    for (const int signal : {SIGTERM, SIGINT, SIGPIPE}) {
        const RawReply reply =
            RunAndWait(u"/bin/bash"_s, {u"-c"_s, u"kill -%1 $$; echo survived"_s.arg(signal)}, {});
        EXPECT_EQ(reply.status, signal);
        EXPECT_EQ(reply.out, QByteArray());
    }
}

TEST_F(RunCallTest, EngineHasAProcessGroupOfItsOwn)
{
    const RawReply reply =
        RunAndWait(u"/bin/bash"_s, {u"-c"_s, u"read -r -a stat </proc/$$/stat; echo $(( stat[4] == $$ ))"_s}, {});
    EXPECT_EQ(reply.out, QByteArray("1\n"));
}

TEST(DecodeStream, IsTheTextOrNothing)
{
    EXPECT_EQ(DecodeStream("Київ 😀"), u"Київ 😀"_s);
    EXPECT_EQ(DecodeStream(""), u""_s);
    EXPECT_EQ(DecodeStream("\xc0\xaf"), u""_s);
    EXPECT_EQ(DecodeStream("\xed\xa0\x80"), u""_s);
}

} // namespace
