#include "platform/SoundPlayer.h"
#include "SoundServer.h"

#include "support/Eventually.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <semaphore>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

/// An output that writes down what it is told, and waits as often as the test wants.
struct FakeOutput : SoundOutput
{
    struct Book
    {
        QStringList calls;
        std::counting_semaphore<> *gate = nullptr;
        std::atomic<FakeOutput *> output = nullptr;
        std::atomic<bool> gone = false;
    };
    explicit FakeOutput(Book &book) : m_book(book) { m_book.output = this; }
    ~FakeOutput() override { m_book.gone = true; }

    Start play(const QString &name, double volume, bool loops) override
    {
        if (m_book.gate)
            m_book.gate->acquire();
        m_book.calls.append(u"play %1 %2 %3"_s.arg(name).arg(volume).arg(loops));
        return {name != u"nothing"_s, name == u"purr"_s};
    }
    void setVolume(const QString &name, double volume) override
    {
        m_book.calls.append(u"volume %1 %2"_s.arg(name).arg(volume));
    }
    void stop(const QString &name) override { m_book.calls.append(u"stop "_s + name); }

private:
    Book &m_book;
};

/// The program that plays, in a process of its own.
class Program
{
public:
    explicit Program(const QString &server)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PULSE_SERVER"_s, server);
        environment.insert(u"HOME"_s, m_home.path());
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(SOUND_PROGRAM), QStringList());
    }
    ~Program()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY(Program)

    void tell(const QByteArray &command) { m_process.write(command + '\n'); }
    bool hears(const QByteArray &line)
    {
        return QTest::qWaitFor([&] { return said().contains(line); }, test::patience);
    }
    QByteArrayList said()
    {
        m_said += m_process.readAllStandardOutput();
        return m_said.split('\n');
    }
    bool canStart(const QByteArray &name)
    {
        forget();
        tell("play " + name + " 0.5 loops");
        const QByteArray yes = "started " + name + " 1 1", no = "started " + name + " 1 0";
        return QTest::qWaitFor([&] { return said().contains(yes) || said().contains(no); }, test::patience) &&
               said().contains(yes);
    }
    void forget() { m_said = {}; }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    int exitCode() const { return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }

private:
    QTemporaryDir m_home;
    QProcess m_process;
    QByteArray m_said;
};

QList<qint16> atVolume(QList<qint16> samples, double volume)
{
    for (qint16 &sample : samples)
        sample = qint16(sample * volume);
    return samples;
}

/// Where `part` stands in `samples`, -1 where it does not.
qsizetype find(const QList<qint16> &samples, const QList<qint16> &part, qsizetype from = 0)
{
    constexpr qsizetype size = sizeof(qint16);
    const char *begin = reinterpret_cast<const char *>(samples.constData());
    const char *end = begin + samples.size() * size;
    for (const char *place = begin + from * size; place < end; ++place) {
        place = static_cast<const char *>(::memmem(place, size_t(end - place), part.constData(), size_t(part.size() * size)));
        if (!place)
            return -1;
        if ((place - begin) % size == 0)
            return (place - begin) / size;
    }
    return -1;
}

bool isSilent(const QList<qint16> &samples)
{
    return std::all_of(samples.cbegin(), samples.cend(), [](qint16 sample) { return sample == 0; });
}

} // namespace

class SoundPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAreMadeInOrderOnAThreadOfTheirOwn()
    {
        FakeOutput::Book book;
        QThread *thread = nullptr;
        {
            SoundPlayer player([&] {
                thread = QThread::currentThread();
                return std::make_unique<FakeOutput>(book);
            });
            QSignalSpy started(&player, &SoundPlayer::started);
            player.play(u"purr"_s, 0.5, true);
            player.setVolume(u"purr"_s, 0.25);
            player.stop(u"purr"_s);
            player.play(u"mew"_s, 0.5, false);
            player.play(u"nothing"_s, 1, false);
            EVENTUALLY_COMPARE(started.size(), 3);
            QCOMPARE(started.at(0), (QVariantList{u"purr"_s, true, true}));
            QCOMPARE(started.at(1), (QVariantList{u"mew"_s, true, false}));
            QCOMPARE(started.at(2), (QVariantList{u"nothing"_s, false, false}));
            QVERIFY(thread != QThread::currentThread());
        }
        QCOMPARE(book.calls, (QStringList{u"play purr 0.5 1"_s, u"volume purr 0.25"_s, u"stop purr"_s, u"play mew 0.5 0"_s,
                                          u"play nothing 1 0"_s}));
        QVERIFY(book.gone);
    }

    void nothingIsLoadedBeforeTheFirstSound()
    {
        std::atomic<bool> made = false;
        SoundPlayer([&] {
            made = true;
            return nullptr;
        });
        QVERIFY(!made);
    }

    void withoutAnOutputThereIsSilence()
    {
        SoundPlayer player([] { return nullptr; });
        QSignalSpy started(&player, &SoundPlayer::started);
        player.setVolume(u"purr"_s, 1);
        player.play(u"purr"_s, 1, true);
        player.stop(u"purr"_s);
        EVENTUALLY_COMPARE(started.size(), 1);
        QCOMPARE(started.at(0), (QVariantList{u"purr"_s, false, false}));
    }

    void aLostSoundIsTold()
    {
        FakeOutput::Book book;
        SoundPlayer player([&] { return std::make_unique<FakeOutput>(book); });
        QSignalSpy started(&player, &SoundPlayer::started), lost(&player, &SoundPlayer::lost);
        player.play(u"purr"_s, 0.5, true);
        EVENTUALLY_COMPARE(started.size(), 1);
        book.output.load()->lost(u"purr"_s);
        EVENTUALLY_COMPARE(lost.size(), 1);
        QCOMPARE(lost.at(0), QVariantList{u"purr"_s});
    }

    void anOutputThatHangsHoldsNothingUp()
    {
        // Static, as the thread that hangs outlives the player.
        static FakeOutput::Book book;
        static std::counting_semaphore<> gate(0);
        book.gate = &gate;
        auto player = std::make_unique<SoundPlayer>([] { return std::make_unique<FakeOutput>(book); });
        for (int i = 0; i < 100; ++i) {
            player->play(u"purr"_s, 0.5, true);
            player->stop(u"purr"_s);
        }
        EVENTUALLY_VERIFY(book.output);
        player.reset(); // while the first call still hangs
        QVERIFY(book.calls.isEmpty());
        gate.release(1000);
        EVENTUALLY_VERIFY(book.gone);
    }

    void thePurrHasNoSeam()
    {
        SoundServer server;
        QVERIFY(server.start());
        Recording recording(server);
        Program program(server.address());
        program.tell("play cat-purr 0.5 loops");
        QVERIFY(program.hears("started cat-purr 1 1"));

        const QList<qint16> purr = atVolume(SoundFile(u"cat-purr"_s), 0.5);
        constexpr qsizetype half = 22050;
        // Once is enough: on a busy computer the server may run dry elsewhere, but not at every seam.
        const QList<qint16> overTheSeam = purr.last(half) + purr.first(half);
        QVERIFY(QTest::qWaitFor([&] { return find(recording.samples(), overTheSeam) >= 0; }, test::patience));
    }

    void theMewPlaysOnce()
    {
        SoundServer server;
        QVERIFY(server.start());
        Recording recording(server);
        Program program(server.address());
        const QList<qint16> mew = atVolume(SoundFile(u"cat-meow"_s), 0.5);
        constexpr qsizetype second = 44100;
        // Once, and again when it is over. A server that runs dry on a busy computer leaves samples out.
        constexpr int attempts = 5;
        int heard = 0;
        for (int attempt = 0; attempt < attempts && heard < 2; ++attempt) {
            const qsizetype from = recording.samples().size();
            program.tell("play cat-meow 0.5 once\nplay cat-meow 0.5 once");
            QVERIFY(program.hears("started cat-meow 1 1"));
            program.forget();
            EVENTUALLY_VERIFY(!isSilent(recording.samples().sliced(from)));
            EVENTUALLY_VERIFY(recording.samples().size() > second && isSilent(recording.samples().last(second)));
            const qsizetype start = find(recording.samples(), mew, from);
            if (start < 0)
                continue;
            ++heard;
            // A second one would come right behind it.
            QVERIFY(isSilent(recording.samples().sliced(start + mew.size())));
        }
        QCOMPARE(heard, 2);
    }

    void aSoundThatDoesNotExist()
    {
        SoundServer server;
        QVERIFY(server.start());
        Program program(server.address());
        program.tell("play cat-bark 0.5 once");
        QVERIFY(program.hears("started cat-bark 0 0"));
        program.tell("quit");
        EVENTUALLY_VERIFY(!program.isRunning());
        QCOMPARE(program.exitCode(), 7);
    }

    void withoutAServer()
    {
        Program program(u"unix:/nonexistent/sound"_s);
        program.tell("play cat-purr 0.5 loops\nplay cat-meow 0.5 once");
        QVERIFY(program.hears("started cat-purr 1 0"));
        QVERIFY(program.hears("started cat-meow 1 0"));
        program.tell("quit");
        EVENTUALLY_VERIFY(!program.isRunning());
        QCOMPARE(program.exitCode(), 7);
    }

    void aServerThatVanishesAndComesBack()
    {
        SoundServer server;
        QVERIFY(server.start());
        Program program(server.address());
        program.tell("play cat-purr 0.5 loops");
        QVERIFY(program.hears("started cat-purr 1 1"));
        server.kill();
        QVERIFY(program.hears("lost cat-purr"));
        QVERIFY(server.start());
        Recording recording(server);
        EVENTUALLY_VERIFY(program.canStart("cat-purr"));
        const QList<qint16> purr = atVolume(SoundFile(u"cat-purr"_s), 0.5);
        EVENTUALLY_VERIFY(find(recording.samples(), purr.first(22050)) >= 0);
    }

    void aServerThatNeverAnswers()
    {
        QTemporaryDir folder;
        QLocalServer silent;
        QVERIFY(silent.listen(folder.filePath(u"socket"_s)));
        Program program(u"unix:"_s + folder.filePath(u"socket"_s));
        program.tell("play cat-purr 0.5 loops");
        EVENTUALLY_VERIFY(silent.hasPendingConnections());
        program.forget();
        program.tell("volume cat-purr 0.2");
        QVERIFY(program.hears("done"));
        program.tell("quit");
        // Only while nothing has given the waiting thread up does the end tell anything.
        QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), 10'000);
        QCOMPARE(program.exitCode(), 7);
        QVERIFY(!program.said().contains("started cat-purr 1 0"));
    }

    void aServerThatHangsWhileItPlays()
    {
        SoundServer server;
        QVERIFY(server.start());
        Program program(server.address());
        program.tell("play cat-purr 0.5 loops");
        QVERIFY(program.hears("started cat-purr 1 1"));
        server.freeze();
        program.forget();
        program.tell("play cat-meow 0.5 once");
        QVERIFY(program.hears("done"));
        program.forget();
        program.tell("stop cat-purr");
        QVERIFY(program.hears("done"));
        program.tell("quit");
        QTRY_VERIFY_WITH_TIMEOUT(!program.isRunning(), 10'000);
        QCOMPARE(program.exitCode(), 7);
        server.thaw();
    }
};

QTEST_GUILESS_MAIN(SoundPlayerTest)

#include "SoundPlayerTest.moc"
