#include "ui/WindowCommands.h"

#include "actions/Menus.h"
#include "ui/Painting.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>

#include <algorithm>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// Runs an editing command on whatever has the keyboard, if that knows it.
void edit(QWidget *focus, const QString &action)
{
    if (action == "delete"_L1) {
        // The editors have no slot for it, only a key, which means other things elsewhere.
        if (!focus->testAttribute(Qt::WA_InputMethodEnabled))
            return;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
        QCoreApplication::sendEvent(focus, &press);
    } else if (focus->metaObject()->indexOfMethod((action.toLatin1() + "()").constData()) >= 0) {
        QMetaObject::invokeMethod(focus, action.toLatin1().constData());
    }
}

bool actsOnWindows(const QString &action)
{
    return QStringList{u"terminate"_s, u"performClose"_s, u"hide"_s, u"performMiniaturize"_s}.contains(action);
}

/// The windows on the screen or minimised, the main one first: not sheets, menus or tips.
QWidgetList openWindows()
{
    QWidgetList open;
    const QWidgetList all = QApplication::topLevelWidgets();
    for (QWidget *widget : all) {
        const bool isOwn = widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog;
        if (widget->isVisible() && isOwn && !widget->parentWidget() && !widget->windowTitle().isEmpty())
            open.append(widget);
    }
    std::sort(open.begin(), open.end(), [](const QWidget *one, const QWidget *other) {
        const bool isMain = one->inherits("QMainWindow");
        return isMain != other->inherits("QMainWindow")
            ? isMain
            : one->windowTitle().localeAwareCompare(other->windowTitle()) < 0;
    });
    return open;
}

} // namespace

void bringWindowForward(QWidget *window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

void PerformForFocus(QWidget *window, const QString &action)
{
    if (QWidget *active = QApplication::activeWindow())
        window = active;
    if (action == "terminate"_L1) {
        QApplication::quit();
    } else if (action == "performClose"_L1) {
        window->close();
    } else if (action == "performMiniaturize"_L1) {
        if (window->windowFlags() & Qt::WindowMinimizeButtonHint)
            window->showMinimized();
    } else if (action == "hide"_L1) {
        const QWidgetList open = openWindows();
        for (QWidget *each : open)
            each->showMinimized();
    } else if (QWidget *focus = QApplication::focusWidget()) {
        edit(focus, action);
    }
}

void AddMenuKeys(QWidget *window, const std::function<void(const QString &)> &command)
{
    const QList<Menu> menus = MainMenu();
    for (const Menu &menu : menus) {
        for (const MenuItem &item : menu.items) {
            const QString &action = item.action;
            if (item.key.isEmpty() || (item.forFocus && !actsOnWindows(action)))
                continue;
            auto *keys = new QShortcut(QKeySequence(KeySequenceOf(item), QKeySequence::PortableText), window);
            if (item.forFocus)
                QObject::connect(keys, &QShortcut::activated, window, [window, action] { PerformForFocus(window, action); });
            else
                QObject::connect(keys, &QShortcut::activated, window, [command, action] { command(action); });
        }
    }
}

void ListWindowsIn(QMenu *menu)
{
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, listed = QList<QAction *>()]() mutable {
        qDeleteAll(listed);
        listed = {menu->addSeparator()};
        const QWidgetList open = openWindows();
        for (QWidget *window : open) {
            QAction *action = menu->addAction(withoutMnemonic(window->windowTitle()));
            action->setCheckable(true);
            action->setChecked(window->isActiveWindow());
            QObject::connect(action, &QAction::triggered, window, [window] { bringWindowForward(window); });
            listed.append(action);
        }
    });
}

} // namespace tuppi
