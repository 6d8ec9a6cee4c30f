#include "viewer/WebViewsModule.h"

#include "viewer/EngineWebView.h"
#include "viewer/WebPage.h"

#include <QLoggingCategory>
#include <QQuickWindow>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>

namespace tuppi {
namespace {

constexpr char flagsName[] = "QTWEBENGINE_CHROMIUM_FLAGS";
constexpr char speaksName[] = "QTWEBENGINE_ENABLE_LINUX_ACCESSIBILITY";

/// Against what no interceptor sees: looking up names, opening connections ahead of need, calls between
/// browsers, reports to the engine's makers. The last: no copy of the script engine's built-in code for each page.
constexpr char flags[] = " --host-resolver-rules=\"MAP * ~NOTFOUND\""
                         " --force-webrtc-ip-handling-policy=disable_non_proxied_udp"
                         " --disable-blink-features=WebTransport,Prerender2"
                         " --disable-background-networking --disable-domain-reliability --disable-breakpad"
                         " --no-pings --log-level=3 --js-flags=--no-short-builtin-calls";

/// Sets a variable of the environment while the object lives: what the engine reads when the first profile is made
/// and its processes inherit is nobody else's business.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_before(qgetenv(name))
    {
        qputenv(m_name, value);
    }
    ~Variable()
    {
        if (m_before.isNull())
            qunsetenv(m_name);
        else
            qputenv(m_name, m_before);
    }
    Q_DISABLE_COPY(Variable)

private:
    const char *m_name;
    QByteArray m_before;
};

QLoggingCategory::CategoryFilter filterBefore = nullptr;

/// The engine lists its parameters on standard error at every start.
void silenceParameters(QLoggingCategory *category)
{
    filterBefore(category);
    if (qstrcmp(category->categoryName(), "qt.webenginecontext") == 0)
        category->setEnabled(QtInfoMsg, false);
}

/// One profile for all views, which keeps nothing on the disk.
class EngineWebViews : public WebViews
{
public:
    EngineWebViews()
    {
        if (!filterBefore) {
            // Known before the new one is installed, which is called at once.
            filterBefore = QLoggingCategory::installFilter(nullptr);
            QLoggingCategory::installFilter(silenceParameters);
        }
        // A page of text needs no graphics processor: without one it is drawn as fast, and a viewer takes less
        // memory and depends on no driver.
        if (QQuickWindow::sceneGraphBackend().isEmpty())
            QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
        // Without this the engine keeps a page from assistive tools; with it, it waits until one of them runs.
        if (!qEnvironmentVariableIsSet(speaksName))
            qputenv(speaksName, "1");
        const Variable forTheFirst(flagsName, qgetenv(flagsName) + flags);
        // A page's few threads share one heap: each would take memory of its own and keep it.
        const Variable forItsProcesses("MALLOC_ARENA_MAX", "1");
        m_profile = std::make_unique<QWebEngineProfile>(); // without a name: off the record
        m_profile->setHttpCacheType(QWebEngineProfile::NoCache);
        m_profile->setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
        m_profile->setSpellCheckEnabled(false);
        m_profile->setUrlRequestInterceptor(&m_guard);
        QObject::connect(m_profile.get(), &QWebEngineProfile::downloadRequested, m_profile.get(),
                         [](QWebEngineDownloadRequest *download) { download->cancel(); });
    }

    WebView *make(const WebViewSetup &setup, QWidget *parent) override
    {
        return new EngineWebView(m_profile.get(), setup, parent);
    }

private:
    NetworkGuard m_guard;
    std::unique_ptr<QWebEngineProfile> m_profile;
};

} // namespace
} // namespace tuppi

tuppi::WebViews *tuppiWebViews()
{
    return new tuppi::EngineWebViews;
}
