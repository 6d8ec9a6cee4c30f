#include "SoundServer.h"

#include "support/Eventually.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

QProcessEnvironment environmentFor(const QTemporaryDir &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"HOME"_s, u"XDG_RUNTIME_DIR"_s, u"XDG_CONFIG_HOME"_s})
        environment.insert(name, home.path());
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent/bus"_s);
    environment.remove(u"PULSE_SERVER"_s);
    return environment;
}

QList<qint16> numbers(const QByteArray &bytes)
{
    QList<qint16> result(bytes.size() / qsizetype(sizeof(qint16)));
    if (!result.isEmpty()) // nothing has no address to copy from
        std::memcpy(result.data(), bytes.constData(), size_t(result.size()) * sizeof(qint16));
    return result;
}

} // namespace

SoundServer::SoundServer()
{
    m_daemon.setProcessEnvironment(environmentFor(m_dir));
    m_daemon.setStandardErrorFile(m_dir.filePath(u"log"_s));
}

SoundServer::~SoundServer()
{
    kill();
}

QString SoundServer::address() const
{
    return u"unix:"_s + m_dir.filePath(u"socket"_s);
}

bool SoundServer::start()
{
    const QString socket = m_dir.filePath(u"socket"_s);
    QFile::remove(socket);
    m_daemon.start(u"pulseaudio"_s,
                   {u"-n"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s, u"--disable-shm=yes"_s,
                    u"--realtime=no"_s, u"--high-priority=no"_s,
                    // What it plays again after a change of mind is not recorded again.
                    u"--load=module-null-sink sink_name=speaker rate=44100 channels=1 norewinds=1"_s,
                    u"--load=module-native-protocol-unix auth-anonymous=1 socket="_s + socket});
    return QTest::qWaitFor([&] { return QFile::exists(socket); }, tuppi::test::patience) && m_daemon.state() == QProcess::Running;
}

void SoundServer::kill()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

void SoundServer::freeze()
{
    ::kill(pid_t(m_daemon.processId()), SIGSTOP);
}

void SoundServer::thaw()
{
    ::kill(pid_t(m_daemon.processId()), SIGCONT);
}

Recording::Recording(const SoundServer &server)
{
    const QStringList format{u"--server="_s + server.address(), u"--raw"_s, u"--format=s16le"_s, u"--rate=44100"_s,
                             u"--channels=1"_s};
    // An idle loudspeaker is not recorded: what follows then lacks its beginning.
    m_silence.start(u"pacat"_s, format + QStringList{u"--playback"_s, u"--device=speaker"_s, u"/dev/zero"_s});
    m_recorder.start(u"parec"_s, format + QStringList{u"--device=speaker.monitor"_s, u"--latency-msec=20"_s});
    (void)QTest::qWaitFor([this] { return !samples().isEmpty(); }, tuppi::test::patience);
}

Recording::~Recording()
{
    for (QProcess *process : {&m_recorder, &m_silence}) {
        process->kill();
        process->waitForFinished();
    }
}

const QList<qint16> &Recording::samples()
{
    m_rest += m_recorder.readAllStandardOutput();
    m_samples += numbers(m_rest);
    m_rest = m_rest.right(m_rest.size() % qsizetype(sizeof(qint16)));
    return m_samples;
}

QList<qint16> SoundFile(const QString &name)
{
    constexpr qsizetype header = 44;
    QFile file(QStringLiteral(SOUND_RESOURCES) + u'/' + name + u".wav"_s);
    return file.open(QIODevice::ReadOnly) ? numbers(file.readAll().sliced(header)) : QList<qint16>();
}
