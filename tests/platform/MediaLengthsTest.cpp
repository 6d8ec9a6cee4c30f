#include "platform/MediaLengths.h"
#include "intake/AcceptedFiles.h"
#include "platform/MediaLength.h"

#include "support/Eventually.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

constexpr double toneSeconds = 3;

/// A reader that waits until the test lets it go on, and counts.
class Gate
{
public:
    MediaLengths::Reader reader()
    {
        return [state = m_state](const QString &path, const std::atomic<bool> &cancelled) {
            const int inside = ++state->inside;
            for (int most = state->most; most < inside && !state->most.compare_exchange_weak(most, inside);) {
            }
            ++state->entered;
            state->pass.acquire();
            state->sawCancelled = cancelled.load();
            --state->inside;
            ++state->left;
            return double(path.size());
        };
    }
    void open(int readings) { m_state->pass.release(readings); }
    int entered() const { return m_state->entered; }
    int left() const { return m_state->left; }
    int mostAtOnce() const { return m_state->most; }
    bool sawCancelled() const { return m_state->sawCancelled; }

private:
    struct State
    {
        QSemaphore pass;
        std::atomic<int> inside = 0, most = 0, entered = 0, left = 0;
        std::atomic<bool> sawCancelled = false;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

double length(const QString &path)
{
    const std::atomic<bool> cancelled = false;
    return MediaLength(path, QDeadlineTimer(60000), cancelled);
}

} // namespace

class MediaLengthsTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }

    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool makeTone(const QString &name, const QStringList &options = {}) const
    {
        QProcess process;
        process.start(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                               u"sine=d=3:r=16000"_s} +
                                       options + QStringList{u"file:"_s + path(name)});
        return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const QString &extension : AcceptedExtensions()) {
            QStringList options;
            if (extension == u"opus"_s || extension == u"webm"_s)
                options = {u"-ar"_s, u"48000"_s};
            QVERIFY2(makeTone(u"tone."_s + extension, options), qPrintable(extension));
        }
    }

    void everyAcceptedKind_data()
    {
        QTest::addColumn<QString>("extension");
        for (const QString &extension : AcceptedExtensions())
            QTest::newRow(qPrintable(extension)) << extension;
    }

    void everyAcceptedKind()
    {
        QFETCH(const QString, extension);
        const double measured = length(path(u"tone."_s + extension));
        // A bare AAC stream has no length in it: an estimate from its beginning.
        const double tolerance = extension == u"aac"_s ? 1.5 : 0.2;
        QVERIFY2(qAbs(measured - toneSeconds) < tolerance, qPrintable(QString::number(measured)));
    }

    void namesThatLookLikeSomethingElse_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("protocol") << u"http:tone.wav"_s;
        QTest::newRow("concat") << u"concat:tone.wav|tone.wav"_s;
        QTest::newRow("option") << u"-i.wav"_s;
        QTest::newRow("sequence") << u"tone%03d.wav"_s;
        QTest::newRow("line break") << u"to\nne.wav"_s;
        QTest::newRow("Arabic") << u"مقابلة.wav"_s;
        QTest::newRow("upper case") << u"TONE.WAV"_s;
        QTest::newRow("another kind") << u"wave.mp3"_s;
        QTest::newRow("no kind") << u"tone"_s;
    }

    void namesThatLookLikeSomethingElse()
    {
        QFETCH(const QString, name);
        QVERIFY(QFile::copy(path(u"tone.wav"_s), path(name)));
        QVERIFY(qAbs(length(path(name)) - toneSeconds) < 0.2);
    }

    void lengthsThatNoHeaderTells()
    {
        QVERIFY(makeTone(u"bare.mp3"_s, {u"-write_xing"_s, u"0"_s}));
        QVERIFY(qAbs(length(path(u"bare.mp3"_s)) - toneSeconds) < 0.5);
        // As written by a program that could not go back to fill in the sizes.
        QByteArray wave = read(u"tone.wav"_s);
        const qsizetype data = wave.indexOf("data");
        QVERIFY(data > 0);
        wave.replace(4, 4, "\xff\xff\xff\xff").replace(data + 4, 4, "\xff\xff\xff\xff");
        QVERIFY(qAbs(length(write(u"piped.wav"_s, wave)) - toneSeconds) < 0.2);
    }

    void nothingToMeasure_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << u"missing.mp3"_s;
        QTest::newRow("empty name") << QString();
        for (const char *name :
             {"empty.mp3", "garbage.mp3", "zeros.mp3", "text.wav", "half.mp4", "header.wav", "folder.mp3",
              "pipe.mp3", "socket.mp3", "zero-device.mp3", "loop.mp3", "playlist.mp3", "session.mp3"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void nothingToMeasure()
    {
        QFETCH(const QString, name);
        static QTcpServer server;
        if (!server.isListening()) {
            QVERIFY(server.listen(QHostAddress::LocalHost));
            QRandomGenerator random(1);
            QByteArray garbage(300000, '\0');
            for (char &byte : garbage)
                byte = char(random.bounded(256));
            const QByteArray address = "http://127.0.0.1:" + QByteArray::number(server.serverPort());
            write(u"empty.mp3"_s, {});
            write(u"garbage.mp3"_s, garbage);
            write(u"zeros.mp3"_s, QByteArray(300000, '\0'));
            write(u"text.wav"_s, QByteArray("These are minutes, not a recording.\n").repeated(5000));
            write(u"half.mp4"_s, read(u"tone.mp4"_s).first(2000));
            write(u"header.wav"_s, read(u"tone.wav"_s).first(20));
            write(u"playlist.mp3"_s, "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\n" + address +
                                         "/a.ts\n#EXTINF:10,\ntone.mp3\n#EXT-X-ENDLIST\n");
            write(u"session.mp3"_s,
                  "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n");
            QVERIFY(QDir(m_dir.path()).mkdir(u"folder.mp3"_s));
            QCOMPARE(::mkfifo(qPrintable(path(u"pipe.mp3"_s)), 0600), 0);
            QVERIFY(QFile::link(u"/dev/zero"_s, path(u"zero-device.mp3"_s)));
            QVERIFY(QFile::link(path(u"loop.mp3"_s), path(u"loop.mp3"_s)));
            sockaddr_un name4{};
            name4.sun_family = AF_UNIX;
            qstrncpy(name4.sun_path, qPrintable(path(u"socket.mp3"_s)), sizeof name4.sun_path);
            const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
            QCOMPARE(::bind(socket, reinterpret_cast<sockaddr *>(&name4), sizeof name4), 0);
            ::close(socket);
        }
        QVERIFY(name.isEmpty() || name == u"missing.mp3"_s || QFileInfo(path(name)).isSymLink() ||
                QFileInfo::exists(path(name)));
        QCOMPARE(length(name.isEmpty() ? name : path(name)), 0.0);
        QVERIFY(!server.waitForNewConnection(0)); // nothing is fetched
    }

    void aPlaylistIsNotFollowedOnThisComputerEither()
    {
        const QString list = write(u"local.mp3"_s, "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\n" +
                                                       path(u"tone.mp3"_s).toUtf8() + "\n#EXT-X-ENDLIST\n");
        QCOMPARE(length(list), 0.0);
    }

    void limits()
    {
        const QString good = path(u"tone.aac"_s);
        const std::atomic<bool> no = false, yes = true;
        QVERIFY(MediaLength(good, QDeadlineTimer(60000), no) > 0);
        QCOMPARE(MediaLength(good, QDeadlineTimer(0), no), 0.0);
        QCOMPARE(MediaLength(good, QDeadlineTimer(60000), yes), 0.0);
    }

    void nothingIsPrinted()
    {
        QFile said(path(u"said"_s));
        QVERIFY(said.open(QIODevice::ReadWrite));
        const int before = ::dup(STDERR_FILENO);
        ::dup2(said.handle(), STDERR_FILENO);
        length(path(u"half.mp4"_s));
        length(path(u"garbage.mp3"_s));
        ::dup2(before, STDERR_FILENO);
        ::close(before);
        QCOMPARE(read(u"said"_s), QByteArray());
    }

    void answersOnTheOwnersThread()
    {
        MediaLengths lengths;
        QThread *thread = nullptr;
        double seconds = -1;
        connect(
            &lengths, &MediaLengths::measured, this,
            [&](const QString &, double measured) {
                thread = QThread::currentThread();
                seconds = measured;
            },
            Qt::DirectConnection);
        lengths.measure({path(u"tone.flac"_s)});
        QCOMPARE(seconds, -1.0); // not before the event loop
        EVENTUALLY_VERIFY(thread);
        QCOMPARE(thread, QThread::currentThread());
        QVERIFY(qAbs(seconds - toneSeconds) < 0.2);
    }

    void thousandsOfFiles()
    {
        constexpr int count = 2000;
        MediaLengths lengths;
        QMap<QString, double> answers;
        int signalCount = 0;
        connect(&lengths, &MediaLengths::measured, this, [&](const QString &file, double seconds) {
            answers.insert(file, seconds);
            ++signalCount;
        });
        for (int i = 0; i < count; ++i) {
            const QString file = path(u"many-%1.mp3"_s.arg(i));
            if (i % 10 == 0)
                QCOMPARE(::mkfifo(qPrintable(file), 0600), 0);
            else
                QVERIFY(QFile::link(path(i % 2 ? u"tone.mp3"_s : u"tone.m4a"_s), file));
            lengths.measure({file});
        }
        QTRY_COMPARE_WITH_TIMEOUT(signalCount, count, 120000);
        QCOMPARE(answers.size(), count);
        int known = 0;
        for (const double seconds : std::as_const(answers))
            known += qAbs(seconds - toneSeconds) < 0.2;
        QCOMPARE(known, count - count / 10);
    }

    void twoAtATimeAndNoCallWaits()
    {
        Gate gate;
        MediaLengths lengths(gate.reader());
        QSignalSpy answers(&lengths, &MediaLengths::measured);
        for (int i = 0; i < 2000; ++i)
            lengths.measure({QString::number(i)}); // none of them is let go on yet
        EVENTUALLY_COMPARE(gate.entered(), 2);
        gate.open(2000);
        QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 2000, 60000);
        QCOMPARE(gate.mostAtOnce(), 2);
        gate.open(1);
        lengths.measure({u"again"_s}); // after its threads have ended
        EVENTUALLY_COMPARE(answers.size(), 2001);
        QCOMPARE(answers.constLast(), (QVariantList{u"again"_s, 5.0}));
    }

    void deathCallsOffTheRest()
    {
        Gate gate;
        auto lengths = std::make_unique<MediaLengths>(gate.reader());
        QSignalSpy answers(lengths.get(), &MediaLengths::measured);
        for (int i = 0; i < 100; ++i)
            lengths->measure({QString::number(i)});
        EVENTUALLY_COMPARE(gate.entered(), 2);
        lengths.reset(); // though both readings are held up
        QCOMPARE(gate.left(), 0);
        gate.open(100);
        EVENTUALLY_COMPARE(gate.left(), 2);
        QVERIFY(gate.sawCancelled());
        QCoreApplication::sendPostedEvents();
        QCOMPARE(gate.entered(), 2);
        QCOMPARE(answers.size(), 0);
    }

    void anAnswerOnItsWayDiesWithTheOwner()
    {
        Gate gate;
        gate.open(1);
        auto lengths = std::make_unique<MediaLengths>(gate.reader());
        QSignalSpy answers(lengths.get(), &MediaLengths::measured);
        lengths->measure({u"x"_s});
        while (gate.left() == 0)
            QThread::yieldCurrentThread(); // without events, so that the answer is not delivered yet
        lengths.reset();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(answers.size(), 0);
    }
};

QTEST_GUILESS_MAIN(MediaLengthsTest)

#include "MediaLengthsTest.moc"
