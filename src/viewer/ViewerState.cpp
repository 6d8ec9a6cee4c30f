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
        if (window->plan().key() != key || outdated.contains(window) || !window->stay())
            continue;
        window->disconnect(this);
        closing.removeOne(window);
        resultWindows.insert(key, window);
        callQuitOff();
        return window;
    }
    return nullptr;
}

void ViewerState::closeForGood(const QString &callDir)
{
    const QList<ResultWindow *> open = resultWindows.values();
    for (ResultWindow *window : open) {
        if (window->callDir() == callDir)
            window->close();
    }
    for (const ResultWindow *window : std::as_const(closing)) {
        if (window->callDir() == callDir)
            outdated.append(window);
    }
}

void ViewerState::whenSaved(const QStringList &callDirs, const std::function<void(bool complete)> &then)
{
    // More than one of a call dir, where one is too far gone to be taken back.
    QList<ResultWindow *> windows = resultWindows.values() + closing;
    windows.removeIf([&](const ResultWindow *window) {
        return !callDirs.contains(window->callDir()) || !window->plan().isViewer();
    });
    if (windows.isEmpty()) {
        then(true);
        return;
    }
    struct Waiting
    {
        qsizetype windows;
        bool complete;
    };
    const auto waiting = std::make_shared<Waiting>(Waiting{windows.size(), true});
    for (ResultWindow *window : std::as_const(windows)) {
        window->whenSaved([waiting, then](bool complete) {
            waiting->complete = waiting->complete && complete;
            if (--waiting->windows == 0)
                then(waiting->complete);
        });
    }
}

void ViewerState::forget(ResultWindow *window)
{
    resultWindows.removeIf([window](const auto &open) { return open.value() == window; });
    closing.append(window);
    QObject::connect(window, &QObject::destroyed, this, [this, window] {
        closing.removeOne(window);
        outdated.removeAll(window);
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
