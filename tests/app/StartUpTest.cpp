#include "AppTest.h"

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::waitFor;

namespace {

class StartUp : public test::AppTest
{
};

TEST_F(StartUp, ResumesAsksForTheModelsAndPollsOnce)
{
    m_engine.answer(u"resume"_s, Answer::script("hang"));
    m_engine.answer(u"models"_s, {R"({"custom":[{"id":"m1","name":"Mine"}],"text_model":"t","ollama_models":["t"]})"});
    launch();
    EXPECT_TRUE(jobs().polling);
    ASSERT_TRUE(waitFor([&] { return jobs().loaded && !m_app->models().custom.isEmpty() && m_engine.calls().size() >= 4; }));
    EXPECT_EQ(m_engine.calls(u"resume"_s), QList<QStringList>{{u"resume"_s}});
    EXPECT_EQ(m_engine.calls(u"models"_s), (QList<QStringList>{{u"models"_s, u"--json"_s}}));
    EXPECT_EQ(m_engine.calls(u"history"_s).first(), (QStringList{u"history"_s, u"--json"_s}));
    EXPECT_EQ(m_engine.calls(u"status"_s).first(), (QStringList{u"status"_s, u"--json"_s}));
    EXPECT_EQ(m_app->models().textModel, u"t"_s);
    EXPECT_EQ(m_app->models().ollamaModels, QStringList{u"t"_s});
}

TEST_F(StartUp, QueueIsRestoredBeforeAnythingIsAskedAndNotRewritten)
{
    const QString a = m_engine.recording(u"a.m4a"_s), b = m_engine.recording(u"b.m4a"_s);
    const QByteArray stored = QJsonDocument(QJsonObject{
        {u"waitingQueue"_s,
         QJsonArray{QJsonObject{{u"path"_s, b}}, QJsonObject{{u"path"_s, u"/gone.m4a"_s}}, QJsonObject{{u"path"_s, a}}}}}).toJson();
    QDir().mkpath(QFileInfo(settingsPath()).path());
    test::writeFile(settingsPath(), stored);
    m_engine.answer(u"history"_s, Answer{"[]"}.heldAt("history"));
    launch();
    EXPECT_EQ(waitingPaths(), (QStringList{b, a}));
    EXPECT_TRUE(jobs().waiting.first().value(u"speakers"_s).toBool());
    EXPECT_FALSE(jobs().waiting.first().value(u"quick"_s).toBool());
    EXPECT_EQ(settingsFile(), stored);
    m_engine.openGate("history");
    EXPECT_TRUE(processCalls(1));
    EXPECT_EQ(storedPaths(), QStringList{a});
}

TEST_F(StartUp, NothingIsStartedBeforeTheFirstHistory)
{
    m_engine.answer(u"history"_s, Answer{R"([{"id":"j","status":"transcribing"}])"}.heldAt("history"));
    launch();
    m_app->enqueue({m_engine.recording(u"a.m4a"_s)}, m_choices);
    settle();
    EXPECT_FALSE(jobs().starting);
    EXPECT_EQ(rowKeys(), QStringList{u"wait:"_s + m_engine.home() + u"/a.m4a"_s});
    m_engine.openGate("history");
    ASSERT_TRUE(waitFor([&] { return jobs().loaded; }));
    settle();
    EXPECT_EQ(m_engine.count(u"process"_s), 0);
    EXPECT_EQ(waitingPaths().size(), 1);
}

TEST_F(StartUp, BeforeTheFirstHistoryTheSummaryIsPreparing)
{
    m_engine.answer(u"history"_s, Answer{"[]"}.heldAt("history"));
    launch();
    m_app->refresh();
    EXPECT_EQ(m_app->list().summary, u"Preparing…"_s);
    m_engine.openGate("history");
    EXPECT_TRUE(waitFor([&] { return m_app->list().summary == u"No transcriptions"_s; }));
}

TEST_F(StartUp, TimerTicks)
{
    launch();
    EXPECT_TRUE(waitFor([&] { return jobs().pollTick >= 2; }));
}

TEST_F(StartUp, UnreadableModelListKeepsTheOldOne)
{
    m_engine.answerCall(u"models"_s, 1, {R"({"custom":[{"id":"m1"}]})"});
    m_engine.answerCall(u"models"_s, 2, {"garbage"});
    prepare();
    m_app->refreshCustomModels();
    ASSERT_TRUE(waitFor([&] { return m_app->models().custom.size() == 1; }));
    m_app->refreshCustomModels();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"models"_s) == 2; }));
    settle();
    EXPECT_EQ(m_app->models().custom, test::array(R"([{"id":"m1"}])"));
}

TEST_F(StartUp, StoredModelIsResetOnlyByAFreshListWithoutIt)
{
    m_engine.answerCall(u"models"_s, 1, {R"({"custom":[{"id":"m1"}]})"});
    m_engine.answerCall(u"models"_s, 2, {"garbage"});
    m_engine.answerCall(u"models"_s, 3, {R"({"custom":[]})"});
    prepare();
    m_defaults->setValue(u"engine"_s, u"custom:m1"_s);
    m_app->refreshCustomModels();
    ASSERT_TRUE(waitFor([&] { return m_app->models().custom.size() == 1; }));
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"custom:m1"_s);
    m_app->refreshCustomModels();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"models"_s) == 2; }));
    settle();
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"custom:m1"_s);
    m_app->refreshCustomModels();
    ASSERT_TRUE(waitFor([&] { return m_app->models().custom.isEmpty(); }));
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"auto"_s);
}

TEST_F(StartUp, ControllerMayGoWhileCommandsAreInFlight)
{
    for (const QString &command : {u"history"_s, u"models"_s, u"resume"_s})
        m_engine.answer(command, {"[]", {}, 0, "wait_for gate", "echo >>\"$root/ended-$1\""});
    launch();
    ASSERT_TRUE(waitFor([&] { return m_engine.calls().size() == 3; }));
    destroy();
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([&] {
        return QFile::exists(m_engine.path(u"ended-history"_s)) && QFile::exists(m_engine.path(u"ended-models"_s))
            && QFile::exists(m_engine.path(u"ended-resume"_s));
    }));
    create();
    settle();
    EXPECT_EQ(m_engine.count(u"status"_s), 0);
}

} // namespace
