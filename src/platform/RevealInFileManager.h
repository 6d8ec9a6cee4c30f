#pragma once

#include "platform/DBusCall.h"

#include <QString>

namespace tuppi {

/// Shows a file or a folder in the file manager, selected. Where that cannot be asked for it over the bus, the
/// folder around it is opened. Returns at once; nothing comes of it when `context` is gone before the answer.
void RevealInFileManager(const QDBusConnection &session, const QString &path, QObject *context);

} // namespace tuppi
