#pragma once

#include "viewer/ResultWindow.h"
#include "viewer/WebView.h"

namespace tuppi {

/// A transcript's own page.
class ViewerWindow : public ResultWindow
{
    Q_OBJECT
public:
    /// `scripts` run before the page's own.
    ViewerWindow(const ResultPlan &plan, WebViews &views, const QStringList &scripts);

    void showTab(bool summary) override;
    /// Runs the answer to a message in the page that posted it; when that is gone, nothing happens.
    void answer(int page, const QString &script);

Q_SIGNALS:
    /// `page` tells the page that posted it from one loaded later.
    void messagePosted(const QJsonObject &body, int page);

protected:
    void dispose() override;
    void setZoom(double factor) override;

private:
    void load();
    void reportCrash();
    void openMenu(const QPoint &place, const QList<WebView::Command> &commands);

    WebView *m_view;
    int m_page = 0;
    bool m_isClosed = false;
};

} // namespace tuppi
