#include "platform/DBusCall.h"

#include <QDBusPendingCallWatcher>

namespace tuppi {

void CallLater(const QDBusConnection &bus, const QDBusMessage &call, int limit, QObject *context,
               std::function<void(const QDBusMessage &)> then)
{
    const QDBusPendingCall pending = bus.asyncCall(call, limit);
    if (pending.isFinished()) { // no bus: a watcher would never tell
        QMetaObject::invokeMethod(
            context, [pending, then = std::move(then)] { then(pending.reply()); }, Qt::QueuedConnection);
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(pending, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->reply());
    });
}

} // namespace tuppi
