// What is heard and told of while the engine works: the log, the footer, the notices on a bus, the sounds on a
// server. The bus and the server are the test's own.

#include "platform/PrivateBus.h"
#include "platform/SoundServer.h"
#include "window/WindowTest.h"

#include "engine/DebugLog.h"
#include "ui/TickBox.h"
#include "viewer/ResultWindow.h"

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QPlainTextEdit>
#include <QResource>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::job;
using test::waitFor;

namespace {

class SoundsAndNotices : public test::WindowTest
{
protected:
    void SetUp() override
    {
        // Read when the first connection of the process is made; each test has a process of its own.
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        m_service.answer = [this](const QDBusMessage &call) {
            if (call.member() == u"GetCapabilities"_s)
                m_service.send(call.createReply(QStringList{u"actions"_s, u"body"_s}));
            else
                m_service.send(call.createReply(++m_number));
        };
        ASSERT_TRUE(m_service.takeName());
    }
    QStringList notices() const
    {
        QStringList result;
        for (const QDBusMessage &call : m_service.calls) {
            if (call.member() == u"Notify"_s)
                result.append(call.arguments().value(3).toString() + u": "_s + call.arguments().value(4).toString());
        }
        return result;
    }
    /// The messages of the diagnostic log.
    static QStringList log()
    {
        constexpr qsizetype dateAndBlank = 26;
        QStringList messages;
        for (const QString &line : QString::fromUtf8(test::readFile(DebugLogPath())).split(u'\n', Qt::SkipEmptyParts))
            messages.append(line.sliced(dateAndBlank));
        return messages;
    }
    static bool logged(const QString &line, int times = 1)
    {
        return waitFor([&] { return log().count(line) == times; });
    }
    void work(const QString &status, bool paused = false)
    {
        show({job(u"a"_s, u"Talk"_s, status, paused)});
    }
    /// A job whose transcript can be shown as text.
    QJsonObject talk(const QString &status)
    {
        const QString folder = m_engine.path(u"home/Talk"_s);
        QDir().mkpath(folder);
        test::writeFile(folder + u"/call.md"_s, "What was said");
        QJsonObject entry = job(u"a"_s, u"Talk"_s, status);
        entry.insert(u"call_dir"_s, folder);
        return entry;
    }
    /// Announces the talk, closes the window, and clicks on the notice once the history is this.
    void clickOnTheNotice(const QList<QJsonObject> &history)
    {
        openWindow();
        show({talk(u"cleaning"_s)});
        show({talk(u"ready"_s)});
        ASSERT_TRUE(waitFor([this] { return notices().size() == 1 && m_number == 1; }));
        window()->close();
        // Its number is known to the application once another notice has gone out.
        show({talk(u"ready"_s), job(u"b"_s, u"B"_s, u"cleaning"_s)});
        show(history + QList{job(u"b"_s, u"B"_s, u"ready"_s)});
        ASSERT_TRUE(waitFor([this] { return notices().size() == 2; }));
        EXPECT_FALSE(window()->isVisible());
        QDBusMessage signal = QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s,
                                                         u"org.freedesktop.Notifications"_s, u"ActionInvoked"_s);
        signal << uint(1) << u"default"_s;
        m_service.send(signal);
        ASSERT_TRUE(waitFor([this] { return window()->isVisible(); }));
    }
    static qint16 loudest(const QList<qint16> &samples)
    {
        qint16 most = 0;
        for (const qint16 sample : samples)
            most = qMax(most, qint16(qAbs(sample)));
        return most;
    }

    PrivateBus m_bus;
    MockService m_service{m_bus.connection(), u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s};
    uint m_number = 0;
};

const QString purrsNot = u"sound purr start play=0 sound=loaded"_s;
const QString mewsNot = u"sound meow play=0 sound=loaded"_s;

TEST_F(SoundsAndNotices, ATranscriptThatBecomesReadyIsAnnouncedOnce)
{
    openWindow();
    work(u"transcribing"_s);
    work(u"analyzing"_s);
    work(u"ready"_s);
    show({job(u"a"_s, u"Talk"_s, u"ready"_s), job(u"b"_s, u"Old"_s, u"ready"_s)});
    EXPECT_TRUE(logged(mewsNot));
    EXPECT_TRUE(waitFor([this] { return notices().size() == 1; }));
    EXPECT_EQ(notices(), QStringList{u"Transcript ready: Talk"_s});
    QStringList lines = log().filter(u"sound status"_s);
    EXPECT_EQ(lines, (QStringList{u"sound status a: (new) -> transcribing"_s, u"sound status a: transcribing -> analyzing"_s,
                                  u"sound status a: analyzing -> ready"_s, u"sound status b: (new) -> ready"_s}));
    EXPECT_TRUE(logged(purrsNot)) << "the first attempt is logged, the others of the same work are not";
}

TEST_F(SoundsAndNotices, AFailureIsToldWithoutAMew)
{
    openWindow();
    work(u"cleaning"_s);
    work(u"failed"_s);
    EXPECT_TRUE(waitFor([this] { return notices() == QStringList{u"Transcription failed: Talk"_s}; }));
    work(u"queued"_s);
    work(u"cancelled"_s);
    EXPECT_TRUE(logged(purrsNot));
    EXPECT_TRUE(log().filter(u"meow"_s).isEmpty());
    EXPECT_EQ(notices().size(), 1);
}

TEST_F(SoundsAndNotices, WithoutNoticesTheMewStays)
{
    QDir().mkpath(QFileInfo(settingsPath()).path());
    test::writeFile(settingsPath(), R"({"notify": false})");
    openWindow();
    work(u"cleaning"_s);
    work(u"ready"_s);
    EXPECT_TRUE(logged(mewsNot));
    EXPECT_TRUE(m_service.calls.isEmpty());
}

TEST_F(SoundsAndNotices, SpeakerButtonSwitchesThemOffAndOn)
{
    openWindow();
    auto *button = window()->findChild<IconButton *>(u"soundButton"_s);
    EXPECT_EQ(button->symbol(), u"speaker.wave.2.fill"_s);
    test::click(button);
    EXPECT_EQ(summary(), u"Sounds off"_s);
    EXPECT_EQ(button->symbol(), u"speaker.slash.fill"_s);
    EXPECT_EQ(button->toolTip(), u"Turn Tuppi's sounds on"_s);
    EXPECT_EQ(settings().value(u"sounds"_s), QJsonValue(false));
    work(u"cleaning"_s);
    work(u"ready"_s);
    EXPECT_TRUE(waitFor([this] { return notices().size() == 1; }));
    EXPECT_TRUE(log().filter(u"meow"_s).isEmpty() && log().filter(u"purr"_s).isEmpty());
    destroy();

    openWindow();
    button = window()->findChild<IconButton *>(u"soundButton"_s);
    EXPECT_EQ(button->symbol(), u"speaker.slash.fill"_s) << "shown as stored from the start";
    work(u"transcribing"_s);
    test::click(button);
    EXPECT_EQ(summary(), u"Sounds on"_s);
    EXPECT_TRUE(logged(purrsNot)) << "switched on during work";
}

TEST_F(SoundsAndNotices, AClickOnANoticeOpensItsTranscript)
{
    ASSERT_NO_FATAL_FAILURE(clickOnTheNotice({talk(u"ready"_s)}));
    ASSERT_EQ(m_app->viewer().resultWindows.size(), 1);
    const auto *text = m_app->viewer().resultWindows.cbegin().value()->findChild<QPlainTextEdit *>();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->toPlainText(), u"What was said"_s);
}

TEST_F(SoundsAndNotices, AClickOnANoticeBringsTheWindowBack)
{
    ASSERT_NO_FATAL_FAILURE(clickOnTheNotice({}));
    EXPECT_TRUE(m_app->viewer().resultWindows.isEmpty()) << "the transcript is gone";
}

TEST_F(SoundsAndNotices, AClickOnTheNoticeOfATranscriptThatIsMadeAnewOpensNone)
{
    ASSERT_NO_FATAL_FAILURE(clickOnTheNotice({talk(u"queued"_s)}));
    EXPECT_TRUE(m_app->viewer().resultWindows.isEmpty());
}

class Heard : public SoundsAndNotices
{
protected:
    void SetUp() override
    {
        SoundsAndNotices::SetUp();
        ASSERT_TRUE(m_server.start());
        qputenv("PULSE_SERVER", m_server.address().toUtf8());
    }
    static QList<qint16> file(const QString &name)
    {
        QList<qint16> samples = SoundFile(name);
        for (qint16 &sample : samples)
            sample = qint16(sample * 0.5);
        return samples;
    }

    static constexpr qsizetype second = 44100;

    /// The factors between the purr and its file, in percent of it and in their order; none when its beginning is not
    /// to be found.
    static QList<int> fadeIn(const QList<qint16> &samples)
    {
        const QList<qint16> purr = SoundFile(u"cat-purr"_s);
        const QList<qint16> opening = file(u"cat-purr"_s).first(second / 4);
        const auto start = std::search(samples.cbegin(), samples.cend(), opening.cbegin(), opening.cend());
        QList<int> steps;
        for (qsizetype at = 0; samples.cend() - start > at; at += 64) {
            double heard = 0, whole = 0;
            for (qsizetype index = at; index < at + 64 && samples.cend() - start > index; ++index) {
                heard += qAbs(double(start[index]));
                whole += qAbs(double(purr.at(index % purr.size())));
            }
            const int percent = int(std::lround(100 * heard / qMax(whole, 1.0)));
            for (const int known : {50, 44, 38, 32, 26, 20, 14, 8, 2, 0}) {
                if (whole > 64 * 200 && percent == known && (steps.isEmpty() || steps.last() != known))
                    steps.append(known);
            }
        }
        return steps;
    }

    SoundServer m_server;
};

TEST_F(Heard, PurrsFadesInNineStepsAndIsSilent)
{
    const QList<int> expected{50, 44, 38, 32, 26, 20, 14, 8, 2, 0};
    openWindow();
    work(u"queued"_s);
    // A server that is kept from its work leaves samples out, and what follows fits no step.
    constexpr int attempts = 5;
    QList<int> steps;
    int attempt = 0;
    while (attempt < attempts && steps != expected) {
        Recording recording(m_server);
        work(u"transcribing"_s);
        ASSERT_TRUE(logged(u"sound purr start play=1 sound=loaded"_s, ++attempt));
        ASSERT_TRUE(waitFor([&] { return recording.samples().size() > 2 * second && loudest(recording.samples().last(second)) > 500; }));
        work(u"transcribing"_s, true);
        ASSERT_TRUE(waitFor([&] { return loudest(recording.samples().last(second / 2)) == 0; }));
        steps = fadeIn(recording.samples());
    }
    EXPECT_EQ(steps, expected);

    work(u"analyzing"_s);
    EXPECT_TRUE(logged(u"sound purr start play=1 sound=loaded"_s, attempt + 1)) << "resumed work purrs again";
}

TEST_F(Heard, SoundsOffInTheSettingsEndsThePurr)
{
    Recording recording(m_server);
    openWindow();
    work(u"transcribing"_s);
    constexpr qsizetype half = 22050;
    ASSERT_TRUE(waitFor([&] { return recording.samples().size() > half && loudest(recording.samples().last(half)) > 500; }));
    m_app->perform(u"showSettings"_s);
    TickBox *sounds = nullptr;
    for (const QWidget *top : QApplication::topLevelWidgets()) {
        if (auto *box = top->findChild<TickBox *>(u"sounds"_s))
            sounds = box;
    }
    ASSERT_NE(sounds, nullptr);
    sounds->click();
    EXPECT_TRUE(waitFor([&] { return loudest(recording.samples().last(half)) == 0; }));
    EXPECT_EQ(window()->findChild<IconButton *>(u"soundButton"_s)->symbol(), u"speaker.slash.fill"_s);
}

TEST_F(Heard, ASoundThatCannotBeReadIsLoggedAndNothingElse)
{
    ASSERT_TRUE(QResource::registerResource(QCoreApplication::applicationDirPath() + u"/no-sound.rcc"_s));
    openWindow();
    work(u"cleaning"_s);
    work(u"ready"_s);
    EXPECT_TRUE(logged(u"sound purr start play=1 sound=loaded"_s));
    EXPECT_TRUE(logged(u"sound meow play=0 sound=nil"_s));
    EXPECT_TRUE(waitFor([this] { return notices().size() == 1; }));
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(Heard, TwoReadyTranscriptsGiveOneMew)
{
    openWindow();
    const QList<qint16> mew = file(u"cat-meow"_s);
    // Its loud middle tells it from silence.
    const QList<qint16> middle = mew.sliced(mew.size() / 3, 4410);
    const auto find = [&](const QList<qint16> &samples, qsizetype from) {
        const auto place = std::search(samples.cbegin() + from, samples.cend(), middle.cbegin(), middle.cend());
        return place == samples.cend() ? -1 : place - samples.cbegin();
    };
    // A server that is kept from its work leaves samples out; two further transcripts mew then.
    constexpr int attempts = 5;
    int attempt = 0;
    qsizetype first = -1;
    while (attempt < attempts && first < 0) {
        const auto both = [&, id = QString::number(attempt)](const QString &status) {
            show({job(u"a"_s + id, u"A"_s, status), job(u"b"_s + id, u"B"_s, status)});
        };
        both(u"queued"_s);
        Recording recording(m_server);
        both(u"ready"_s);
        ASSERT_TRUE(logged(u"sound meow play=1 sound=loaded"_s, 2 * ++attempt));
        ASSERT_TRUE(waitFor([&] { return loudest(recording.samples()) > 500; }));
        const auto over = [&] { return loudest(recording.samples().last(2 * second)) == 0; };
        ASSERT_TRUE(waitFor([&] { return recording.samples().size() > 2 * second && over(); }));
        first = find(recording.samples(), 0);
        if (first < 0)
            continue;
        EXPECT_EQ(find(recording.samples(), first + 1), -1);
        EXPECT_EQ(loudest(recording.samples().sliced(first + mew.size())), 0);
    }
    EXPECT_GE(first, 0);
    EXPECT_TRUE(waitFor([&] { return notices().size() == 2 * attempt; }));
}

} // namespace
