#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/// A message bus for one test, on which nothing is started by itself. Stops when it dies.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    Q_DISABLE_COPY(PrivateBus)

    bool isRunning() const { return !m_address.isEmpty(); }
    QString address() const { return m_address; }
    qint64 processId() const { return m_daemon.processId(); }

    /// A new connection, open until the bus dies or close() is called with it.
    QDBusConnection connection();
    void close(const QDBusConnection &connection);

private:
    QTemporaryDir m_dir;
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

/// A service of the desktop that answers as the test says.
class MockService : public QDBusVirtualObject
{
public:
    /// Takes every call at `path` and below on `connection`, which it gives the name `service`.
    MockService(const QDBusConnection &connection, const QString &service, const QString &path);

    bool takeName();
    bool dropName();

    /// Answers a call, or does not. Without one, no call is ever answered.
    std::function<void(const QDBusMessage &call)> answer;
    QList<QDBusMessage> calls;

    int count(const QString &member) const;
    void send(const QDBusMessage &message) { m_connection.send(message); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusConnection m_connection;
    QString m_service;
};

/// A connection without a bus.
QDBusConnection NoBus();
