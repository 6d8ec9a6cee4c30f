#pragma once

#include <QLatin1StringView>

namespace tuppi {

/// The application's name among the desktop's: bus name, name of the desktop file (see
/// QGuiApplication::setDesktopFileName) and, with slashes for dots, object path.
inline constexpr QLatin1StringView applicationId("org.tuppi.Transcriber");
inline constexpr QLatin1StringView applicationObjectPath("/org/tuppi/Transcriber");

} // namespace tuppi
