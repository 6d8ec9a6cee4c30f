#pragma once

#include <QList>
#include <QString>

namespace tuppi {

/// One item of a menu as data; an item without a title is a separator.
struct MenuItem
{
    QString title;   ///< English; looked up when the menu is built
    QString action;  ///< the command's name
    QString key;     ///< the key pressed together with Control; a capital adds Shift; empty for none
    bool forFocus = false;  ///< goes to whatever has the keyboard focus, not to the controller
};

struct Menu
{
    QString title;
    QList<MenuItem> items;
    bool listsWindows = false; ///< the open windows follow
};

/// The menu bar.
QList<Menu> MainMenu();

/// The context menu of a row.
QList<MenuItem> RowMenu();

/// The key sequence of an item in Qt's portable form, empty for none.
QString KeySequenceOf(const MenuItem &item);

} // namespace tuppi
