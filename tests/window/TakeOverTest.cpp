// A window beside another process that keeps the waiting list.

#include "window/WindowTest.h"

#include "app/FileLock.h"
#include "app/StartRecord.h"

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::job;
using test::waitFor;

namespace {

const QString notice = u"Another Tuppi is running. The list here is kept only until the app quits."_s;

/// The other process is the lock that it holds and what it has stored.
class TakeOver : public test::WindowTest
{
protected:
    void SetUp() override
    {
        m_a = m_engine.recording(u"a.m4a"_s);
        m_b = m_engine.recording(u"b.m4a"_s);
        m_c = m_engine.recording(u"c.m4a"_s);
        m_d = m_engine.recording(u"d.m4a"_s);
        m_engine.answerHistory(test::historyOf({job(u"j"_s, u"Talk"_s, u"transcribing"_s)}));
        m_other = std::make_unique<Defaults>(settingsPath());
        m_lock = std::make_unique<FileLock>(settingsPath() + u".queue.lock"_s);
        ASSERT_EQ(m_lock->tryLock(), FileLock::Result::Held);
    }
    static WaitingQueue queueOf(const QStringList &paths)
    {
        WaitingQueue queue;
        AddWaiting(queue, paths, {u"parakeet"_s, u"pl"_s, true, false});
        return queue;
    }
    void otherStores(const QStringList &paths) { m_other->setValue(u"waitingQueue"_s, StoredQueue(queueOf(paths))); }
    void otherEnds() { m_lock.reset(); }

    QString m_a;
    QString m_b;
    QString m_c;
    QString m_d;
    std::unique_ptr<Defaults> m_other;
    std::unique_ptr<FileLock> m_lock;
};

TEST_F(TakeOver, TheOthersListIsTakenOverOnceItHasEnded)
{
    otherStores({m_a, m_b});
    openWindow();
    ASSERT_FALSE(m_app->keepsQueue());
    m_app->enqueue({m_b, m_c}, m_choices);
    otherStores({m_a, m_b, m_d});
    poll();
    EXPECT_EQ(waitingPaths(), (QStringList{m_b, m_c}));
    EXPECT_EQ(storedPaths(), (QStringList{m_a, m_b, m_d})) << "it is the other's as long as that runs";

    otherEnds();
    poll();
    EXPECT_TRUE(m_app->keepsQueue());
    const QStringList both{m_a, m_b, m_d, m_c};
    EXPECT_EQ(waitingPaths(), both);
    EXPECT_EQ(storedPaths(), both);
    EXPECT_EQ(jobs().waiting.at(1).value(u"engine"_s), u"parakeet"_s) << "what waited first";
    EXPECT_EQ(jobs().waiting.at(3).value(u"engine"_s), u"whisper"_s);
    EXPECT_EQ(rowKeys().first(), u"wait:"_s + m_a);
    m_app->removeWaiting(u"wait:"_s + m_d);
    EXPECT_EQ(storedPaths(), (QStringList{m_a, m_b, m_c}));
}

TEST_F(TakeOver, ThatTheListIsNotKeptIsSaidOnce)
{
    openWindow();
    EXPECT_FALSE(m_summaries.contains(notice));
    m_app->enqueue({m_a}, m_choices);
    EXPECT_EQ(summary(), notice);
    m_app->flash(u"Sounds off"_s);
    m_app->enqueue({m_b}, m_choices);
    EXPECT_EQ(summary(), u"Sounds off"_s);
    EXPECT_EQ(m_summaries.count(notice), 1);
}

TEST_F(TakeOver, NothingIsSaidOnceTheListIsOnesOwn)
{
    openWindow();
    otherEnds();
    poll();
    m_app->enqueue({m_a}, m_choices);
    EXPECT_FALSE(m_summaries.contains(notice));
    EXPECT_EQ(storedPaths(), QStringList{m_a});
}

TEST_F(TakeOver, AStartThatTheOtherLeftIsSettled)
{
    m_other->setValue(u"startInFlight"_s, StoredStart({queueOf({m_a}).first(), QStringList{u"j"_s}}));
    openWindow();
    m_app->enqueue({m_b}, m_choices);
    otherEnds();
    poll();
    EXPECT_EQ(waitingPaths(), (QStringList{m_a, m_b}));
    EXPECT_EQ(storedPaths(), (QStringList{m_a, m_b}));
    EXPECT_EQ(storedStart(), QString());
}

TEST_F(TakeOver, AStartOfOnesOwnEndsFirst)
{
    m_engine.answerHistory("[]");
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    otherStores({m_a});
    openWindow();
    m_app->enqueue({m_b, m_c}, m_choices);
    ASSERT_TRUE(processCalls(1));
    otherEnds();
    poll();
    EXPECT_FALSE(m_app->keepsQueue());
    EXPECT_EQ(waitingPaths(), QStringList{m_c});
    m_engine.openGate("process");
    ASSERT_TRUE(waitFor([this] { return m_app->keepsQueue(); }));
    ASSERT_TRUE(processCalls(3));
    EXPECT_EQ(processed(), (QStringList{m_b, m_a, m_c}));
}

} // namespace
