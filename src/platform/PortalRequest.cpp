#include "platform/PortalRequest.h"

#include "platform/Portal.h"

#include <QDBusObjectPath>
#include <QGuiApplication>
#include <QUuid>
#include <QWindow>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

const QString requestInterface = u"org.freedesktop.portal.Request"_s;

} // namespace

QDBusMessage PortalRequest::call(const QString &interface, const QString &member)
{
    return QDBusMessage::createMethodCall(portalService, portalPath, interface, member);
}

PortalRequest::PortalRequest(const QDBusConnection &session, QObject *context, std::function<void(bool)> then)
    : QObject(context)
    , m_bus(session)
    , m_then(std::move(then))
{
}

void PortalRequest::send(const QDBusConnection &session, QDBusMessage call, QVariantMap options, QObject *context,
                         std::function<void(bool)> then)
{
    constexpr int limit = 25'000; // the portal may have to be started
    auto *request = new PortalRequest(session, context, std::move(then));
    const QString token = u"tuppi_"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QString sender = session.baseService().mid(1).replace(u'.', u'_');
    request->listenTo(portalPath + u"/request/"_s + sender + u'/' + token);
    options.insert(u"handle_token"_s, token);
    call << options;
    CallLater(session, call, limit, request, [request](const QDBusMessage &reply) { request->takeReply(reply); });
}

void PortalRequest::listenTo(const QString &path)
{
    // Without a sender in the rule: naming one makes Qt ask the bus for its owner and wait for the answer.
    const auto slot = SLOT(responded(QDBusMessage));
    if (!m_path.isEmpty())
        m_bus.disconnect(QString(), m_path, requestInterface, u"Response"_s, this, slot);
    m_path = path;
    m_bus.connect(QString(), m_path, requestInterface, u"Response"_s, this, slot);
}

void PortalRequest::takeReply(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"o"_s) {
        end(false);
        return;
    }
    const QString path = reply.arguments().constFirst().value<QDBusObjectPath>().path();
    if (path != m_path) // portals before version 0.9 choose the path themselves
        listenTo(path);
}

void PortalRequest::responded(const QDBusMessage &signal)
{
    constexpr uint ok = 0, cancelledByThePerson = 1;
    const uint outcome = signal.arguments().value(0).toUInt();
    end(signal.signature().startsWith(u'u') && (outcome == ok || outcome == cancelledByThePerson));
}

void PortalRequest::end(bool done)
{
    if (m_ended)
        return;
    m_ended = true;
    deleteLater();
    m_then(done);
}

QString PortalParent(QWindow *window)
{
    if (!window || QGuiApplication::platformName() != "xcb"_L1)
        return {};
    return u"x11:"_s + QString::number(window->winId(), 16);
}

} // namespace tuppi
