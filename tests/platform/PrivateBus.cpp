#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QFile>

#include <csignal>

using namespace Qt::StringLiterals;

PrivateBus::PrivateBus()
{
    QFile config(m_dir.filePath(u"bus.conf"_s));
    if (!m_dir.isValid() || !config.open(QIODevice::WriteOnly))
        return;
    config.write("<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:dir=" +
                 QFile::encodeName(m_dir.path()) +
                 "</listen><policy context='default'><allow send_destination='*' eavesdrop='true'/>"
                 "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
    config.close();
    m_daemon.setStandardErrorFile(QProcess::nullDevice()); // it complains about limits in a container
    m_daemon.start(u"dbus-daemon"_s,
                   {u"--config-file="_s + config.fileName(), u"--nofork"_s, u"--print-address=1"_s});
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(30000)) {
    }
    m_address = QString::fromLatin1(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus()
{
    for (const QString &name : std::as_const(m_names))
        QDBusConnection::disconnectFromBus(name);
    if (m_daemon.processId() > 0)
        ::kill(pid_t(m_daemon.processId()), SIGCONT);
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::connection()
{
    static int number = 0;
    const QString name = u"private-%1"_s.arg(++number);
    m_names.append(name);
    return QDBusConnection::connectToBus(m_address, name);
}

void PrivateBus::close(const QDBusConnection &connection)
{
    QDBusConnection::disconnectFromBus(connection.name());
}

MockService::MockService(const QDBusConnection &connection, const QString &service, const QString &path)
    : m_connection(connection)
    , m_service(service)
{
    m_connection.registerVirtualObject(path, this, QDBusConnection::SubPath);
}

bool MockService::takeName()
{
    return m_connection.registerService(m_service);
}

bool MockService::dropName()
{
    return m_connection.unregisterService(m_service);
}

int MockService::count(const QString &member) const
{
    return int(std::count_if(calls.begin(), calls.end(),
                             [&](const QDBusMessage &call) { return call.member() == member; }));
}

bool MockService::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    calls.append(message);
    if (answer)
        answer(message);
    return true;
}

QDBusConnection NoBus()
{
    return QDBusConnection(u"there is no bus of this name"_s);
}
