#include "platform/Notifier.h"

#include "platform/ApplicationId.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString notificationService = u"org.freedesktop.Notifications"_s;
const QString notificationPath = u"/org/freedesktop/Notifications"_s;
const QString defaultAction = u"default"_s;
const QString namedAction = u"open"_s;

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(notificationService, notificationPath, notificationService, method);
}

} // namespace

Notifier::Notifier(const QDBusConnection &session, const QString &actionText, int limit, QObject *parent)
    : QObject(parent)
    , m_bus(session)
    , m_actionText(actionText)
    , m_limit(limit)
{
    // Without a sender in the rule: naming one makes Qt ask the bus for its owner and wait for the answer.
    const auto listen = [this](const QString &signal, const char *slot) {
        m_bus.connect(QString(), notificationPath, notificationService, signal, this, slot);
    };
    listen(u"ActionInvoked"_s, SLOT(actionInvoked(QDBusMessage)));
    listen(u"ActivationToken"_s, SLOT(activationToken(QDBusMessage)));
    listen(u"NotificationClosed"_s, SLOT(notificationClosed(QDBusMessage)));
}

void Notifier::post(const QString &identifier, const QString &title, const QString &body)
{
    m_waiting.append({identifier, title, body});
    postNext();
}

/// One after the other, so that the number of a notice is known when the next is to take its place.
void Notifier::postNext()
{
    if (m_asking || m_waiting.isEmpty())
        return;
    m_asking = true;
    // Asked each time: another service may have come since. One that does not tell is given the plain notice.
    CallLater(m_bus, callOf(u"GetCapabilities"_s), m_limit, this, [this](const QDBusMessage &reply) {
        const bool told = reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"as"_s;
        send(m_waiting.takeFirst(), told ? reply.arguments().constFirst().toStringList() : QStringList(),
             told ? reply.service() : QString());
    });
}

void Notifier::send(const Notice &notice, const QStringList &capabilities, const QString &service)
{
    const Shown last = m_shown.value(notice.identifier);
    const uint replaced = last.service == service ? last.number : 0;
    const bool isMarkup = capabilities.contains(u"body-markup"_s);
    QStringList actions;
    // Some services show no sign that a notice can be clicked: hence a button as well.
    if (capabilities.contains(u"actions"_s))
        actions = {defaultAction, m_actionText, namedAction, m_actionText};
    const QVariantMap hints{{u"desktop-entry"_s, QString(applicationId)},
                            {u"sound-name"_s, u"message-new-instant"_s}};
    constexpr int timeOfTheService = -1;
    QDBusMessage call = callOf(u"Notify"_s);
    call << u"Tuppi Transcriber"_s << replaced << u"tuppi-transcriber"_s << notice.title
         << (isMarkup ? notice.body.toHtmlEscaped() : notice.body) << actions << hints << timeOfTheService;
    CallLater(m_bus, call, m_limit, this, [this, identifier = notice.identifier](const QDBusMessage &reply) {
        takeReply(identifier, reply);
        m_asking = false;
        postNext();
    });
}

void Notifier::takeReply(const QString &identifier, const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"u"_s)
        m_shown.insert(identifier, {reply.service(), reply.arguments().constFirst().toUInt(), {}});
}

/// The notice that a service tells of. Anybody on the bus can send its signals; only its own are heard.
Notifier::ShownNotices::iterator Notifier::shownBy(const QDBusMessage &signal)
{
    const QVariant number = signal.arguments().value(0);
    return std::find_if(m_shown.begin(), m_shown.end(), [&](const Shown &shown) {
        return shown.service == signal.service() && number.typeId() == QMetaType::UInt &&
               shown.number == number.toUInt();
    });
}

void Notifier::activationToken(const QDBusMessage &signal)
{
    if (const auto shown = shownBy(signal); shown != m_shown.end())
        shown->token = signal.arguments().value(1).toString();
}

void Notifier::actionInvoked(const QDBusMessage &signal)
{
    const auto shown = shownBy(signal);
    const QString action = signal.arguments().value(1).toString();
    if (shown == m_shown.end() || (action != defaultAction && action != namedAction))
        return;
    // A token serves once.
    const QString token = std::exchange(shown->token, QString());
    Q_EMIT clicked(shown.key(), token);
}

void Notifier::notificationClosed(const QDBusMessage &signal)
{
    if (const auto shown = shownBy(signal); shown != m_shown.end())
        m_shown.erase(shown);
}

} // namespace tuppi
