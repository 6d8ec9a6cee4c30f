#pragma once

#include "viewer/ResultWindow.h"
#include "viewer/ViewerMessage.h"
#include "viewer/WebView.h"

#include <QTimer>

#include <optional>

namespace tuppi {

/// A transcript's own page.
class ViewerWindow : public ResultWindow
{
    Q_OBJECT
public:
    /// `scripts` run before the page's own.
    ViewerWindow(const ResultPlan &plan, WebViews &views, const QStringList &scripts);

    void showTab(bool summary) override;
    /// What became of a message, told to the page that posted it unless that is gone. Every message has to be
    /// answered, once. `written` is told by correctionsLost() where the page no longer can.
    void answer(int page, const ViewerReply &reply, const QString &written);
    void whenSaved(std::function<void(bool complete)> then) override;
    bool stay() override;

Q_SIGNALS:
    /// `page` tells the page that posted it from one loaded later.
    void messagePosted(const QJsonObject &body, int page);
    /// Corrections made before the window was closed were not saved. `written` is what the person wrote in them.
    void correctionsLost(const QString &reason, const QStringList &written);

protected:
    void dispose() override;
    void setZoom(double factor) override;

private:
    /// How far the window is from its end: a page that was closed is first asked for what it has not saved.
    enum class Life { Open, Saving, Ending, Unloaded };

    void load();
    void loadWhenAnswered();
    void reportCrash();
    void offerToLoadAgain();
    void askForUnsaved(bool endsEdit);
    void askForFailed();
    void hearUnsaved(const QStringList &unsaved, const QStringList &failed);
    void goOn(bool complete);
    void end();
    void leaveWhenAnswered();
    void losePage(const QStringList &unsaved);
    void lose(const QString &reason, const QStringList &written);
    void tellLost();
    void openMenu(const QPoint &place, const QList<WebView::Command> &commands);

    WebView *m_view;
    int m_page = 0;
    std::optional<bool> m_summary;              ///< the tab asked for since the page was loaded
    bool m_pageRuns = false;                    ///< it has been loaded, or has posted something
    bool m_pageGone = false;                    ///< crashed, and not loaded again
    bool m_loadsWhenAnswered = false;           ///< it is wanted again
    Life m_life = Life::Open;
    int m_unanswered = 0;                       ///< messages
    QStringList m_unsaved;                      ///< as the page said last
    QStringList m_failed;                       ///< likewise: what it offers to try again, and has not posted since
    QList<std::function<void(bool complete)>> m_whenSaved;
    bool m_failedMeanwhile = false;             ///< a correction that those wait for
    QTimer m_patience{this};
    QTimer m_end{this};                         ///< of a page that does not end
    QString m_lostReason;
    QStringList m_lost;
};

} // namespace tuppi
