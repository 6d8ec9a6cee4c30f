#include "viewer/WebPage.h"

#include "viewer/PageRules.h"

#include <QLoggingCategory>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineProfile>
#include <QWebEngineRegisterProtocolHandlerRequest>
#include <QWebEngineSettings>

namespace tuppi {

namespace {

Q_LOGGING_CATEGORY(log, "tuppi.viewer", QtWarningMsg)

void refuse(QWebEngineUrlRequestInfo &info)
{
    qCDebug(log) << "refused request" << info.requestUrl().toString();
    info.block(true);
}

} // namespace

RequestGuard::RequestGuard(const QString &folder, QObject *parent)
    : QWebEngineUrlRequestInterceptor(parent)
    , m_folder(folder)
{
}

void RequestGuard::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    if (!IsRequestAllowed(info.requestUrl(), m_folder))
        refuse(info);
}

void NetworkGuard::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    if (!info.requestUrl().isLocalFile() && !IsRequestAllowed(info.requestUrl(), {}))
        refuse(info);
}

WebPage::WebPage(QWebEngineProfile *profile, QObject *parent)
    : QWebEnginePage(profile, parent)
{
    restrict();
    connect(this, &QWebEnginePage::featurePermissionRequested, this, [this](const QUrl &origin, Feature feature) {
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
    });
    connect(this, &QWebEnginePage::fullScreenRequested, this,
            [](QWebEngineFullScreenRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::fileSystemAccessRequested, this,
            [](QWebEngineFileSystemAccessRequest request) { request.reject(); });
}

void WebPage::restrict()
{
    using Settings = QWebEngineSettings;
    for (const Settings::WebAttribute on : {Settings::WebRTCPublicInterfacesOnly})
        settings()->setAttribute(on, true);
    for (const Settings::WebAttribute off :
         {Settings::AutoLoadIconsForPage, Settings::DnsPrefetchEnabled, Settings::ErrorPageEnabled,
          Settings::FullScreenSupportEnabled, Settings::HyperlinkAuditingEnabled,
          Settings::JavascriptCanAccessClipboard, Settings::JavascriptCanOpenWindows,
          Settings::JavascriptCanPaste, Settings::LocalContentCanAccessRemoteUrls,
          Settings::NavigateOnDropEnabled, Settings::PdfViewerEnabled, Settings::PlaybackRequiresUserGesture,
          Settings::PluginsEnabled, Settings::ScreenCaptureEnabled, Settings::TouchIconsEnabled,
          Settings::WebGLEnabled})
        settings()->setAttribute(off, false);
    settings()->setUnknownUrlSchemePolicy(Settings::DisallowUnknownUrlSchemes);
}

bool WebPage::acceptNavigationRequest(const QUrl &url, NavigationType, bool)
{
    const bool allowed = IsNavigationAllowed(url);
    if (!allowed)
        qCDebug(log) << "refused navigation" << url.toString();
    return allowed;
}

void WebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &message, int line, const QString &)
{
    qCDebug(log) << "page, line" << line << message;
}

} // namespace tuppi
