#include "platform/DBusCall.h"

#include <QDBusPendingCallWatcher>

namespace tuppi {

void CallLater(QDBusConnection bus, const QDBusMessage &call, int limit, QObject *context,
               std::function<void(const QDBusMessage &)> then)
{
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, limit), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, then = std::move(then)] {
                         watcher->deleteLater();
                         then(watcher->reply());
                     });
}

} // namespace tuppi
