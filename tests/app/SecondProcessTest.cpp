#include "AppTest.h"

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

/// Two controllers on the same store: the lock does not tell a second object from a second process.
class SecondProcess : public test::AppTest
{
protected:
    void SetUp() override
    {
        m_a = m_engine.recording(u"a.m4a"_s);
        m_b = m_engine.recording(u"b.m4a"_s);
        m_engine.answerHistory(R"([{"id":"j","status":"transcribing"}])");
    }

    QString m_a;
    QString m_b;
};

TEST_F(SecondProcess, KeepsAQueueOfItsOwnAndWritesNothing)
{
    prepare();
    poll();
    ASSERT_TRUE(m_app->keepsQueue());
    m_app->enqueue({m_a}, m_choices);
    const QByteArray before = settingsFile();

    Defaults secondDefaults(settingsPath());
    AppDelegate second(secondDefaults);
    second.restoreWaiting();
    EXPECT_FALSE(second.keepsQueue());
    EXPECT_TRUE(second.jobs().waiting.isEmpty());
    second.poll();
    ASSERT_TRUE(waitFor([&] { return second.jobs().loaded && !second.jobs().polling; }));
    second.enqueue({m_b}, m_choices);
    EXPECT_EQ(second.jobs().waiting.size(), 1);
    EXPECT_EQ(settingsFile(), before);

    second.removeWaiting(u"wait:"_s + m_b);
    EXPECT_TRUE(second.jobs().waiting.isEmpty());
    EXPECT_EQ(settingsFile(), before);
}

TEST_F(SecondProcess, StartsItsOwnFilesWithoutTouchingTheRecordOfTheFirst)
{
    m_engine.answerHistory("[]");
    m_engine.answer(u"process"_s, Answer().heldAt("process"));
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    ASSERT_TRUE(processCalls(1));
    const QByteArray before = settingsFile();

    Defaults secondDefaults(settingsPath());
    AppDelegate second(secondDefaults);
    second.restoreWaiting();
    EXPECT_FALSE(second.jobs().interruptedStart);
    second.poll();
    ASSERT_TRUE(waitFor([&] { return second.jobs().loaded && !second.jobs().polling; }));
    second.enqueue({m_b}, m_choices);
    ASSERT_TRUE(processCalls(2));
    EXPECT_EQ(settingsFile(), before);
    EXPECT_EQ(storedStart(), m_a);
    m_engine.openGate("process");
    ASSERT_TRUE(waitFor([&] { return !second.jobs().starting && !jobs().starting; }));
    EXPECT_FALSE(settings().contains(u"startInFlight"_s));
}

TEST_F(SecondProcess, StoredQueueIsTakenOverOnceTheOwnerIsGone)
{
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    destroy();
    prepare();
    EXPECT_TRUE(m_app->keepsQueue());
    EXPECT_EQ(waitingPaths(), QStringList{m_a});
}

TEST_F(SecondProcess, TheLockGoesOnlyWhenTheQueueIsOnTheDisk)
{
    prepare();
    poll();
    m_app->enqueue({m_a}, m_choices);
    m_app.reset(); // the store lives on
    EXPECT_EQ(pathsIn(test::object(test::readFile(settingsPath()))), QStringList{m_a});
}

TEST_F(SecondProcess, OrdinarySettingsOfBothAreKept)
{
    prepare();
    Defaults secondDefaults(settingsPath());
    ASSERT_TRUE(secondDefaults.setValue(u"txtFormat"_s, u"plain"_s));
    poll();
    m_app->enqueue({m_a}, m_choices);
    EXPECT_EQ(settings().value(u"txtFormat"_s), QJsonValue(u"plain"_s));
    EXPECT_EQ(storedPaths(), QStringList{m_a});
}

} // namespace
