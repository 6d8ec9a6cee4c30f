#include "recognise/WhisperRecogniser.h"

#include "core/Files.h"
#include "worker/SegmentProcess.h"

#include "Support.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

using State = SegmentProcess::State;

// The stand-in for whisper-cli, with a home of its own.
class WhisperRecogniserTest : public testing::Test
{
protected:
    WhisperRecogniserTest()
    {
        qputenv("STAND_IN_WHISPER", QFile::encodeName(m_home.path()));
        makeFolder(m_home.paths().models, u"No folder"_s);
        m_model.sha256 = QString(64, u'a');
        setModel("lmgg and what follows");
        test::appendBabble(m_samples, 12, 5000);
    }
    ~WhisperRecogniserTest() override { qunsetenv("STAND_IN_WHISPER"); }

    void setModel(const QByteArray &content)
    {
        m_model.size = content.size();
        test::write(customModelFile(m_home.paths(), m_model), content);
    }
    void behave(const QByteArray &how) { test::write(m_home.file(u"behaviour"_s), how); }

    WhisperRecogniser recogniser(const QString &language, const WhisperPatience &patience = {})
    {
        return WhisperRecogniser({QStringLiteral(STAND_IN_WHISPER_CLI), m_model,
                                  openCustomModel(m_home.paths(), m_model), language, m_home.paths().work,
                                  patience});
    }

    QJsonObject lastRun() const
    {
        return QJsonDocument::fromJson(test::contentOf(m_home.file(u"runs"_s)).trimmed().split('\n').last())
            .object();
    }

    static State end(SegmentProcess &process)
    {
        State state = State::Running;
        while (state == State::Running)
            state = process.wait(1000);
        return state;
    }

    State end(WhisperRecogniser &recogniser)
    {
        SegmentProcess process(recogniser, {m_samples}, [] {});
        return end(process);
    }

    QString refusal()
    {
        WhisperRecogniser whisper = recogniser(u"uk"_s);
        SegmentProcess process(whisper, {m_samples}, [] {});
        EXPECT_EQ(end(process), State::Done);
        return test::sentenceOf([&] { process.heard(); });
    }

    test::Home m_home;
    CustomModel m_model{u"id"_s, u"Mine"_s, u"whisper"_s, u"owner/name"_s, u"ggml-a.bin"_s, {}, 0};
    std::vector<int16_t> m_samples;
};

} // namespace

TEST_F(WhisperRecogniserTest, givesPhrasesAndTheLanguage)
{
    test::write(m_home.file(u"language"_s), "uk");
    behave("split");
    WhisperRecogniser whisper = recogniser(u"auto"_s);
    SegmentProcess process(whisper, {m_samples}, [] {});
    ASSERT_EQ(end(process), State::Done);
    const Heard heard = process.heard();
    EXPECT_EQ(heard.language, u"uk"_s);
    ASSERT_EQ(heard.phrases.size(), 3U);
    EXPECT_EQ(heard.phrases[2].endMs, 12000);
    EXPECT_EQ(heard.phrases[0].words.front().text, u"Ну,"_s);
    EXPECT_EQ(heard.phrases[0].words.back().text, u"щось."_s);
    EXPECT_EQ(process.percent(), 100);
    EXPECT_EQ(whisper.contractName(), u"whisper"_s);
    EXPECT_EQ(lastRun()[u"language"].toString(), u"auto"_s);
    EXPECT_GT(lastRun()[u"priority"].toInt(), 0);
    EXPECT_FALSE(QDir(m_home.paths().work).exists());
}

TEST_F(WhisperRecogniserTest, staysWithTheLanguageThatWasHeardBefore)
{
    WhisperRecogniser automatic = recogniser(u"auto"_s);
    Sound sound{m_samples};
    sound.language = u"pl"_s;
    {
        SegmentProcess process(automatic, sound, [] {});
        ASSERT_EQ(end(process), State::Done);
    }
    EXPECT_EQ(lastRun()[u"language"].toString(), u"pl"_s);
}

TEST_F(WhisperRecogniserTest, usesAModelThatWasRemovedMeanwhile)
{
    WhisperRecogniser whisper = recogniser(u"uk"_s);
    QFile::remove(customModelFile(m_home.paths(), m_model));
    EXPECT_EQ(end(whisper), State::Done);
}

TEST_F(WhisperRecogniserTest, saysWhatCannotBeHelped)
{
    setModel("no model");
    EXPECT_TRUE(refusal().startsWith(u"whisper-cli could not load the speech model “Mine”."));
}

TEST_F(WhisperRecogniserTest, isTriedAgainAfterABreakdown)
{
    for (const char *how : {"crash", "refuse", "garbage", "cut-off"}) {
        behave(how);
        WhisperRecogniser whisper = recogniser(u"uk"_s);
        EXPECT_EQ(end(whisper), State::Died) << how;
    }
    behave("crash-once");
    QFile::remove(m_home.file(u"crashed"_s));
    WhisperRecogniser whisper = recogniser(u"uk"_s);
    EXPECT_EQ(end(whisper), State::Died);
    EXPECT_EQ(end(whisper), State::Done);
}

TEST_F(WhisperRecogniserTest, silenceGivesNothing)
{
    for (const char *how : {"nothing", "describe"}) {
        behave(how);
        WhisperRecogniser whisper = recogniser(u"uk"_s);
        SegmentProcess process(whisper, {m_samples}, [] {});
        ASSERT_EQ(end(process), State::Done);
        EXPECT_TRUE(process.heard().phrases.empty()) << how;
    }
}

TEST_F(WhisperRecogniserTest, endsWhatIsStuck)
{
    behave("hang");
    WhisperRecogniser idle = recogniser(u"uk"_s, {500, 1000000});
    EXPECT_EQ(end(idle), State::Died);
    behave("spin");
    WhisperRecogniser silent = recogniser(u"uk"_s, {1000000, 500});
    EXPECT_EQ(end(silent), State::Died);
}

TEST_F(WhisperRecogniserTest, leavesNoProgramBehindWhenItIsDropped)
{
    for (const char *how : {"", "wrap"}) {
        behave(how);
        test::write(m_home.file(u"closed"_s), "");
        WhisperRecogniser whisper = recogniser(u"uk"_s);
        pid_t program = 0;
        {
            SegmentProcess process(whisper, {m_samples}, [] {});
            while (process.percent() < 50)
                ASSERT_EQ(process.wait(1000), State::Running);
            program = pid_t(lastRun()[u"pid"].toInt());
            ASSERT_EQ(::kill(program, 0), 0);
        }
        // Gone, or dead and not yet buried by whoever has inherited it.
        QByteArray state;
        do
            state = test::contentOf(u"/proc/%1/stat"_s.arg(program));
        while (!state.isEmpty() && !state.contains(") Z ") && !state.contains(") X "));
        QFile::remove(m_home.file(u"closed"_s));
    }
}

} // namespace engine
