#pragma once

#include "platform/DBusCall.h"

#include <QObject>
#include <QVariantMap>

#include <functional>

QT_BEGIN_NAMESPACE
class QWindow;
QT_END_NAMESPACE

namespace tuppi {

/// One request to the desktop's portal: a call whose outcome comes later, as a signal. Deletes itself with its
/// outcome.
class PortalRequest : public QObject
{
    Q_OBJECT
public:
    /// Sends `call` with `options` as its last argument and returns at once. `then` hears whether the portal did
    /// it (a person who said no was served, too); not at all when `context`, which owns the request, is gone.
    static void send(const QDBusConnection &session, QDBusMessage call, QVariantMap options, QObject *context,
                     std::function<void(bool done)> then);

    /// A call to one of the portal's interfaces, still without arguments.
    static QDBusMessage call(const QString &interface, const QString &member);

private Q_SLOTS:
    void responded(const QDBusMessage &signal);

private:
    PortalRequest(const QDBusConnection &session, QObject *context, std::function<void(bool)> then);
    void listenTo(const QString &path);
    void takeReply(const QDBusMessage &reply);
    void end(bool done);

    QDBusConnection m_bus;
    std::function<void(bool)> m_then;
    QString m_path;
    bool m_ended = false;
};

/// How a portal is told the window that its dialogs belong to.
QString PortalParent(QWindow *window);

} // namespace tuppi
