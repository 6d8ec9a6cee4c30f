#pragma once

#include <QWebEnginePage>
#include <QWebEngineUrlRequestInterceptor>

namespace tuppi {

/// Refuses every request but those for files inside a folder.
class RequestGuard : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT
public:
    /// `folder` is canonical.
    explicit RequestGuard(const QString &folder, QObject *parent = nullptr);

    void interceptRequest(QWebEngineUrlRequestInfo &info) override;

private:
    QString m_folder;
};

/// Refuses every request that could leave the computer, also those that belong to no page.
class NetworkGuard : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo &info) override;
};

/// A page that goes nowhere, opens nothing and asks nothing.
class WebPage : public QWebEnginePage
{
    Q_OBJECT
public:
    WebPage(QWebEngineProfile *profile, QObject *parent);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType) override { return nullptr; }
    QStringList chooseFiles(FileSelectionMode, const QStringList &, const QStringList &) override { return {}; }
    // Qt's own open a dialog and wait for it.
    void javaScriptAlert(const QUrl &, const QString &) override {}
    bool javaScriptConfirm(const QUrl &, const QString &) override { return false; }
    bool javaScriptPrompt(const QUrl &, const QString &, const QString &, QString *) override { return false; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &message, int line,
                                  const QString &source) override;

private:
    void restrict();
};

} // namespace tuppi
