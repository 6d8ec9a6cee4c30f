#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tuppi {

class ResultWindow;
class WebViews;

/// The open result windows. On the application it is the filter that lets a quit wait for what was corrected.
struct ViewerState : QObject
{
    ViewerState();
    ~ViewerState() override;

    /// The window under the key, or null. One that was closed a moment ago is taken back: a page made anew would not
    /// know of what that one is still saving.
    ResultWindow *window(const QString &key);
    /// Closes the windows of the call dir, to be made anew when they are wanted again: they show what is no more.
    void closeForGood(const QString &callDir);
    /// Calls `then` when what was corrected in the viewers of those call dirs is in their files; at once without a
    /// viewer. Waiting has an end: without `complete` some of it failed meanwhile, or may still be under way.
    void whenSaved(const QStringList &callDirs, const std::function<void(bool complete)> &then);
    /// The window is closed and about to go.
    void forget(ResultWindow *window);
    /// A quit that waits does not come any more: the person goes on.
    void callQuitOff();
    bool eventFilter(QObject *watched, QEvent *event) override;

    std::unique_ptr<WebViews> views;              ///< null until the first page is shown
    QHash<QString, ResultWindow *> resultWindows; ///< by ResultPlan::key(); out of it as soon as they close
    QList<ResultWindow *> closing;                ///< closed, and not gone before what was corrected is saved
    QList<const ResultWindow *> outdated;         ///< of those: not to be taken back
    bool quitsThen = false;                       ///< when those are gone
    bool relaunches = false;                      ///< the application, when it has quit
};

} // namespace tuppi
