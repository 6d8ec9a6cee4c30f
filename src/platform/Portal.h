#pragma once

#include <QString>

namespace tuppi {

/// Where the desktop's portal is found on the session bus.
inline const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");

} // namespace tuppi
