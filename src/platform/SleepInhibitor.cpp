#include "platform/SleepInhibitor.h"
#include "platform/Portal.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QPointer>
#include <QUuid>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString inhibitPortal = u"org.freedesktop.portal.Inhibit"_s;
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
const QString logindService = u"org.freedesktop.login1"_s;
const QString logindPath = u"/org/freedesktop/login1"_s;
const QString logindInterface = u"org.freedesktop.login1.Manager"_s;

constexpr uint suspendFlag = 4;

/// The object path that a portal gives to the request with this token.
QString requestPath(const QDBusConnection &bus, const QString &token)
{
    const QString sender = bus.baseService().mid(1).replace(u'.', u'_');
    return portalPath + u"/request/"_s + sender + u'/' + token;
}

void closeRequest(const QDBusConnection &bus, const QString &request)
{
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, request, requestInterface, u"Close"_s);
    call.setAutoStartService(false);
    bus.send(call);
}

/// The request that a portal granted, empty when it refused or did not answer.
QString grantedRequest(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"o"_s)
        return {};
    return reply.arguments().constFirst().value<QDBusObjectPath>().path();
}

/// Ends whatever `reply` to the request at the path `asked` granted, or may still grant after its limit.
void giveBack(const QDBusConnection &bus, const QString &asked, const QDBusMessage &reply)
{
    const QString granted = grantedRequest(reply);
    if (!granted.isEmpty())
        closeRequest(bus, granted);
    else if (QDBusError(reply).type() == QDBusError::NoReply)
        closeRequest(bus, asked);
}

} // namespace

SleepInhibitor::SleepInhibitor(const QDBusConnection &session, const QDBusConnection &system,
                               const QString &reason, int limit, QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_system(system)
    , m_reason(reason)
    , m_limit(limit)
{
    const auto watch = [this](const QString &service, const QDBusConnection &bus) {
        if (!bus.isConnected())
            return;
        auto *watcher = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                [this](const QString &name, const QString &, const QString &owner) {
                    if (name == portalService && m_stage == Stage::HeldByPortal)
                        portalFailed();
                    if (!owner.isEmpty())
                        serviceAppeared(name);
                });
    };
    watch(portalService, m_session);
    watch(logindService, m_system);
}

SleepInhibitor::~SleepInhibitor()
{
    const QSignalBlocker silent(this);
    release();
}

SleepInhibitor::Holder SleepInhibitor::holder() const
{
    switch (m_stage) {
    case Stage::HeldByPortal:
        return Holder::Portal;
    case Stage::HeldByLogind:
        return Holder::Logind;
    default:
        return Holder::Nobody;
    }
}

void SleepInhibitor::setInhibited(bool inhibited)
{
    if (inhibited == m_wanted)
        return;
    m_wanted = inhibited;
    if (!inhibited)
        release();
    else
        askPortal();
}

void SleepInhibitor::askPortal()
{
    m_portalCameLate = false;
    const QString token = u"tuppi_"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QString request = requestPath(m_session, token);
    m_request = request;
    listen(request, true);
    m_stage = Stage::AskingPortal;

    QDBusMessage call =
        QDBusMessage::createMethodCall(portalService, portalPath, inhibitPortal, u"Inhibit"_s);
    call << QString() << suspendFlag << QVariantMap{{u"handle_token"_s, token}, {u"reason"_s, m_reason}};
    // The reply is awaited beyond this object's life, so that a grant is never left behind.
    QPointer<SleepInhibitor> self(this);
    CallLater(m_session, call, m_limit, QCoreApplication::instance(),
              [self, bus = m_session, request](const QDBusMessage &reply) {
                  if (self && self->m_stage == Stage::AskingPortal && self->m_request == request)
                      self->takePortalReply(reply);
                  else
                      giveBack(bus, request, reply);
              });
}

void SleepInhibitor::takePortalReply(const QDBusMessage &reply)
{
    const QString granted = grantedRequest(reply);
    if (granted.isEmpty()) {
        giveBack(m_session, m_request, reply);
        portalFailed();
        return;
    }
    if (granted != m_request) { // portals before version 0.9 choose the path themselves
        listen(m_request, false);
        m_request = granted;
        listen(m_request, true);
    }
    m_stage = Stage::HeldByPortal;
}

void SleepInhibitor::portalResponded(const QDBusMessage &signal)
{
    const bool ours =
        signal.path() == m_request && (m_stage == Stage::AskingPortal || m_stage == Stage::HeldByPortal);
    const bool granted = signal.signature().startsWith(u'u') && signal.arguments().constFirst().toUInt() == 0;
    if (ours && !granted)
        portalFailed();
}

void SleepInhibitor::portalFailed()
{
    listen(m_request, false);
    m_request.clear();
    askLogind();
}

void SleepInhibitor::serviceAppeared(const QString &name)
{
    if (m_stage == Stage::Refused)
        askPortal();
    else if (m_stage == Stage::AskingLogind && name == portalService)
        m_portalCameLate = true;
}

void SleepInhibitor::askLogind()
{
    m_stage = Stage::AskingLogind;
    QDBusMessage call =
        QDBusMessage::createMethodCall(logindService, logindPath, logindInterface, u"Inhibit"_s);
    call << u"sleep"_s << u"Tuppi Transcriber"_s << m_reason << u"block"_s;
    // A reply that nobody waits for any more closes its descriptor, and with it the lock.
    CallLater(m_system, call, m_limit, this, [this, question = ++m_question](const QDBusMessage &reply) {
        if (question == m_question && m_stage == Stage::AskingLogind)
            takeLogindReply(reply);
    });
}

void SleepInhibitor::takeLogindReply(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"h"_s)
        m_lock = reply.arguments().constFirst().value<QDBusUnixFileDescriptor>();
    m_stage = m_lock.isValid() ? Stage::HeldByLogind : Stage::Refused;
    if (m_stage == Stage::Refused && m_portalCameLate)
        askPortal();
}

void SleepInhibitor::release()
{
    const Stage stage = m_stage;
    const QString request = m_request;
    m_lock = QDBusUnixFileDescriptor();
    m_request.clear();
    if (!request.isEmpty())
        listen(request, false);
    if (stage == Stage::HeldByPortal)
        closeRequest(m_session, request);
    m_stage = Stage::Idle;
}

void SleepInhibitor::listen(const QString &request, bool on)
{
    // Without a sender in the rule: naming one makes Qt ask the bus for its owner and wait for the answer.
    const QString name = u"Response"_s;
    if (on)
        m_session.connect(QString(), request, requestInterface, name, this,
                          SLOT(portalResponded(QDBusMessage)));
    else
        m_session.disconnect(QString(), request, requestInterface, name, this,
                             SLOT(portalResponded(QDBusMessage)));
}

} // namespace tuppi
