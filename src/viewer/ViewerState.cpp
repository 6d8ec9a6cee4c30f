#include "viewer/ViewerState.h"

#include "viewer/ResultWindow.h"
#include "viewer/WebView.h"

#include <QApplication>

#include <utility>

namespace tuppi {

ViewerState::ViewerState() = default;

ViewerState::~ViewerState()
{
    // Also those that are closed and still letting their page end: a page must not outlive what made it.
    const QWidgetList topLevel = QApplication::topLevelWidgets();
    QList<ResultWindow *> windows; // picked before the first goes: dialogs over it go with it
    for (QWidget *widget : topLevel) {
        if (auto *window = qobject_cast<ResultWindow *>(widget))
            windows.append(window);
    }
    qDeleteAll(windows);
}

ResultWindow *ViewerState::window(const QString &key)
{
    if (ResultWindow *window = resultWindows.value(key))
        return window;
    for (ResultWindow *window : std::as_const(closing)) {
        if (window->plan().key() != key || !window->stay())
            continue;
        window->disconnect(this);
        closing.removeOne(window);
        resultWindows.insert(key, window);
        callQuitOff();
        return window;
    }
    return nullptr;
}

void ViewerState::whenSaved(const QString &callDir, std::function<void()> then)
{
    const QList<ResultWindow *> windows = resultWindows.values() + closing;
    for (ResultWindow *window : windows) {
        if (window->callDir() != callDir || !window->plan().isViewer())
            continue;
        window->whenSaved(std::move(then));
        return;
    }
    then();
}

void ViewerState::forget(ResultWindow *window)
{
    resultWindows.removeIf([window](const auto &open) { return open.value() == window; });
    closing.append(window);
    QObject::connect(window, &QObject::destroyed, this, [this, window] {
        closing.removeOne(window);
        if (quitsThen && closing.isEmpty())
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    });
}

void ViewerState::callQuitOff()
{
    quitsThen = false;
    relaunches = false;
}

bool ViewerState::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Quit || watched != qApp)
        return false;
    const QList<ResultWindow *> open = resultWindows.values();
    for (ResultWindow *window : open)
        window->close();
    quitsThen = !closing.isEmpty();
    if (quitsThen)
        event->ignore();
    return quitsThen;
}

} // namespace tuppi
