#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

class QObject;

namespace tuppi {

/// How long a service of the desktop may take to answer before it counts as absent, in milliseconds.
inline constexpr int serviceLimit = 5000;

/// Sends a method call and returns at once. The reply, or the error message that stands for it (no bus, no
/// such service, no answer within `limit` milliseconds), goes to `then` on `context`'s thread; not at all
/// when `context` is gone by then.
void CallLater(const QDBusConnection &bus, const QDBusMessage &call, int limit, QObject *context,
               std::function<void(const QDBusMessage &)> then);

} // namespace tuppi
