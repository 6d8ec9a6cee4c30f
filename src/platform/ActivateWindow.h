#pragma once

class QString;
class QWindow;

namespace tuppi {

/// Brings a window forward and gives it the keyboard, unminimised if need be. `token` is what the desktop
/// gave to whoever asked for it (see SingleInstance), or empty; without one most desktops only mark the
/// window as wanting attention. A hidden window stays hidden: show it first.
void ActivateWindow(QWindow *window, const QString &token);

} // namespace tuppi
