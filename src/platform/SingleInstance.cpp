#include "platform/SingleInstance.h"

#include "platform/ApplicationId.h"

#include <QDBusMessage>
#include <QDeadlineTimer>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString busService = u"org.freedesktop.DBus"_s;
const QString busPath = u"/org/freedesktop/DBus"_s;
const QString activationToken = u"activation-token"_s;
const QString startupId = u"desktop-startup-id"_s;

QString tokenOf(const QVariantMap &platformData)
{
    const QString token = platformData.value(activationToken).toString();
    return token.isEmpty() ? platformData.value(startupId).toString() : token;
}

/// A blocking call that is over when `deadline` is.
QDBusMessage ask(const QDBusConnection &bus, const QDBusMessage &call, const QDeadlineTimer &deadline)
{
    return bus.call(call, QDBus::Block, int(qMax<qint64>(1, deadline.remainingTime())));
}

enum class Name { Ours, Taken, Unavailable };

Name requestName(const QDBusConnection &bus, const QDeadlineTimer &deadline)
{
    constexpr uint doNotQueue = 4, primaryOwner = 1, taken = 3, alreadyOwner = 4;
    // Not QDBusConnection::registerService(), whose limit is 25 seconds.
    QDBusMessage call = QDBusMessage::createMethodCall(busService, busPath, busService, u"RequestName"_s);
    call << QString(applicationId) << doNotQueue;
    const QDBusMessage reply = ask(bus, call, deadline);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return Name::Unavailable;
    switch (reply.arguments().value(0).toUInt()) {
    case primaryOwner:
    case alreadyOwner:
        return Name::Ours;
    case taken:
        return Name::Taken;
    default:
        return Name::Unavailable;
    }
}

bool callOwner(const QDBusConnection &bus, const QString &method, const QVariantList &arguments,
               const QDeadlineTimer &deadline)
{
    QDBusMessage call = QDBusMessage::createMethodCall(applicationId, applicationObjectPath,
                                                       u"org.freedesktop.Application"_s, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return ask(bus, call, deadline).type() == QDBusMessage::ReplyMessage;
}

bool handOver(const QDBusConnection &bus, const QList<QUrl> &urls, const QVariantMap &tokens,
              const QDeadlineTimer &deadline)
{
    if (urls.isEmpty())
        return callOwner(bus, u"Activate"_s, {tokens}, deadline);
    // Asked to open nothing first: only an owner that answers is given the files, so that none that hangs now adds
    // them later, beside the process that ran alone instead. Whether its window comes forward the files decide.
    if (!callOwner(bus, u"Open"_s, {QStringList(), QVariantMap()}, deadline))
        return false;
    QStringList uris;
    for (const QUrl &url : urls)
        uris.append(QString::fromLatin1(url.toEncoded()));
    return callOwner(bus, u"Open"_s, {uris, tokens}, deadline);
}

} // namespace

QVariantMap LaunchTokens()
{
    QVariantMap tokens;
    const auto add = [&tokens](const QString &key, const char *variable) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            tokens.insert(key, value);
    };
    add(activationToken, "XDG_ACTIVATION_TOKEN");
    add(startupId, "DESKTOP_STARTUP_ID");
    return tokens;
}

SingleInstance::SingleInstance(const QDBusConnection &session, QObject *parent)
    : QObject(parent)
    , m_bus(session)
{
    new ApplicationAdaptor(this);
}

SingleInstance::~SingleInstance()
{
    if (!m_isOwner)
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(busService, busPath, busService, u"ReleaseName"_s);
    call << QString(applicationId);
    m_bus.send(call);
    m_bus.unregisterObject(applicationObjectPath);
}

SingleInstance::Role SingleInstance::start(const QList<QUrl> &urls, const QVariantMap &tokens, int limit)
{
    // Before the name, so that nobody who finds the name misses the object.
    if (!m_bus.isConnected() ||
        !m_bus.registerObject(applicationObjectPath, this, QDBusConnection::ExportAdaptors))
        return Role::Alone;
    const QDeadlineTimer deadline(limit);
    // Again when the owner has gone while it was asked.
    for (int attempt = 0; attempt < 3 && !deadline.hasExpired(); ++attempt) {
        const Name name = requestName(m_bus, deadline);
        if (name == Name::Ours) {
            m_isOwner = true;
            return Role::Primary;
        }
        if (name == Name::Unavailable)
            break;
        if (handOver(m_bus, urls, tokens, deadline)) {
            m_bus.unregisterObject(applicationObjectPath);
            return Role::HandedOver;
        }
    }
    m_bus.unregisterObject(applicationObjectPath);
    return Role::Alone;
}

ApplicationAdaptor::ApplicationAdaptor(SingleInstance *instance)
    : QDBusAbstractAdaptor(instance)
    , m_instance(instance)
{
}

void ApplicationAdaptor::Activate(const QVariantMap &platformData)
{
    Q_EMIT m_instance->activated(tokenOf(platformData));
}

void ApplicationAdaptor::Open(const QStringList &uris, const QVariantMap &platformData)
{
    QList<QUrl> urls;
    for (const QString &uri : uris) {
        const QUrl url = QUrl::fromEncoded(uri.toUtf8(), QUrl::StrictMode);
        if (url.isValid() && !url.isRelative())
            urls.append(url);
    }
    Q_EMIT m_instance->openRequested(urls, tokenOf(platformData));
}

void ApplicationAdaptor::ActivateAction(const QString &, const QVariantList &,
                                        const QVariantMap &platformData)
{
    Q_EMIT m_instance->activated(tokenOf(platformData));
}

} // namespace tuppi
