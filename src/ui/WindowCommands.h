#pragma once

#include <QString>

#include <functional>

QT_BEGIN_NAMESPACE
class QMenu;
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// Shows the window, minimised or not, above the others and with the keyboard.
void bringWindowForward(QWidget *window);

/// Does what a command of the menu bar does to windows and to whatever has the keyboard: closing, minimising, editing,
/// quitting. `window` is meant where no window of the program is the active one.
void PerformForFocus(QWidget *window, const QString &action);

/// Gives a window beside the main one, which alone has the menu bar, the keys of that bar; those for editing are the
/// toolkit's own. `command` is told the controller's commands by their names.
void AddMenuKeys(QWidget *window, const std::function<void(const QString &action)> &command);

/// Lists the open windows at the end of a menu, anew each time it opens; a choice brings that window forward.
void ListWindowsIn(QMenu *menu);

} // namespace tuppi
