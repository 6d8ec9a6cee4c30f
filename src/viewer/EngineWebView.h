#pragma once

#include "viewer/WebView.h"

#include <QWebChannel>
#include <QWebEngineView>

class QWebEngineProfile;

namespace tuppi {

class EngineWebView;
class WebPage;

/// What the page's script sees of the application: one function.
class PageChannel : public QObject
{
    Q_OBJECT
public:
    explicit PageChannel(EngineWebView *view);

public Q_SLOTS:
    /// A message as JSON. Anything but an object is dropped.
    void post(const QString &json);

private:
    EngineWebView *m_view;
};

/// A web view of Qt WebEngine.
class EngineWebView : public WebView
{
public:
    EngineWebView(QWebEngineProfile *profile, const WebViewSetup &setup, QWidget *parent);
    ~EngineWebView() override;

    void load() override;
    void run(const QString &script) override;
    void ask(const QString &script, std::function<void(const QVariant &value)> answered) override;
    void unload() override;
    void perform(Command command) override;
    void setZoom(double factor) override;

private:
    /// Without the engine's own menu, which offers to save the page and to show its source.
    class View : public QWebEngineView
    {
    public:
        View(WebPage *page, EngineWebView *owner);

    protected:
        void contextMenuEvent(QContextMenuEvent *event) override;

    private:
        EngineWebView *m_owner;
    };

    void addScript(const QString &name, const QString &source);

    WebViewSetup m_setup;
    WebPage *m_page;
    View *m_view;
    PageChannel m_tuppi;
    QWebChannel m_channel;
    bool m_isEnding = false;
};

} // namespace tuppi
