#include "AppTest.h"

#include "platform/PrivateBus.h"

#include <QDBusObjectPath>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

/// On a message bus of its own, whose portal grants every wish to stay awake. A program of its own too: the bus that a
/// process has asked first stays its session bus.
class KeepAwake : public test::AppTest
{
protected:
    static void SetUpTestSuite()
    {
        s_bus = new PrivateBus;
        qputenv("DBUS_SESSION_BUS_ADDRESS", s_bus->address().toUtf8());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    }
    static void TearDownTestSuite() { delete std::exchange(s_bus, nullptr); }

    void SetUp() override
    {
        ASSERT_TRUE(s_bus->isRunning());
        m_portal.answer = [this](const QDBusMessage &call) {
            const QDBusObjectPath request(u"/org/freedesktop/portal/desktop/request/%1"_s.arg(++m_requests));
            m_portal.send(call.member() == u"Inhibit"_s ? call.createReply(QVariant::fromValue(request)) : call.createReply());
        };
        ASSERT_TRUE(m_portal.takeName());
        m_file = m_engine.recording(u"memo.m4a"_s);
    }
    void TearDown() override { destroy(); }

    /// How often the desktop was asked to stay awake, and how often let sleep again.
    QPair<int, int> asked() const { return {m_portal.count(u"Inhibit"_s), m_portal.count(u"Close"_s)}; }
    bool becomes(int awake, int asleep)
    {
        return waitFor([&] { return asked() == qMakePair(awake, asleep); });
    }
    static QByteArray job(const QByteArray &status) { return R"([{"id":"j","status":")" + status + R"("}])"; }

    QString m_file;

private:
    static inline PrivateBus *s_bus = nullptr;
    MockService m_portal{s_bus->connection(), u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s};
    int m_requests = 0;
};

TEST_F(KeepAwake, WhileAJobIsUnderWay)
{
    m_engine.answerHistory(job("transcribing"));
    launch();
    ASSERT_TRUE(becomes(1, 0));
    poll();
    m_engine.answerHistory(job("ready"));
    poll();
    ASSERT_TRUE(becomes(1, 1));
    poll();
    EXPECT_EQ(asked(), qMakePair(1, 1));
}

TEST_F(KeepAwake, NotForWhatIsDone)
{
    m_engine.answerHistory(job("failed"));
    launch();
    ASSERT_TRUE(waitFor([this] { return jobs().loaded; }));
    poll();
    EXPECT_EQ(asked(), qMakePair(0, 0));
}

TEST_F(KeepAwake, FromAFilesStartToTheEndOfItsJobWithoutAGap)
{
    m_engine.keepBook("transcribing");
    m_engine.answer(u"process"_s, Answer::script(R"(locked book_add "$2")").heldAt("process"));
    launch();
    ASSERT_TRUE(waitFor([this] { return jobs().loaded; }));
    ASSERT_TRUE(pollEnds());
    m_app->enqueue({m_file}, m_choices);
    ASSERT_TRUE(becomes(1, 0));
    ASSERT_TRUE(m_engine.letPass("process"));
    ASSERT_TRUE(waitFor([this] { return m_taken == QStringList{m_file}; }));
    poll();
    EXPECT_EQ(asked(), qMakePair(1, 0)) << "the list did not have the job yet when its start was answered";
    m_engine.setJob(1, {{u"id"_s, u"job-1"_s}, {u"status"_s, u"ready"_s}});
    poll();
    EXPECT_TRUE(becomes(1, 1));
}

TEST_F(KeepAwake, FromOneFileOfTheQueueToTheNextWithoutAGap)
{
    m_engine.keepBook("transcribing");
    launch();
    ASSERT_TRUE(waitFor([this] { return jobs().loaded; }));
    const QString other = m_engine.recording(u"talk.wav"_s);
    m_app->enqueue({m_file, other}, m_choices);
    ASSERT_TRUE(waitFor([this] { return m_taken.size() == 1; }));
    m_engine.setJob(1, {{u"id"_s, u"job-1"_s}, {u"status"_s, u"ready"_s}});
    ASSERT_TRUE(waitFor([this] { return m_taken.size() == 2; }));
    poll();
    EXPECT_EQ(asked(), qMakePair(1, 0));
}

TEST_F(KeepAwake, NotForAnEngineThatHasGone)
{
    m_engine.answerHistory(job("transcribing"));
    launch();
    ASSERT_TRUE(becomes(1, 0));
    ASSERT_TRUE(pollEnds());
    m_engine.uninstall();
    EXPECT_TRUE(becomes(1, 1)) << "its job's end will not be heard of";
    EXPECT_TRUE(waitFor([this] { return jobs().engineBroken; }));
}

} // namespace
