#include "viewer/LoadWebViews.h"

#include "viewer/WebViewsModule.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>
#include <QLibraryInfo>
#include <QOpenGLContext>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

QT_BEGIN_NAMESPACE
// What Qt::AA_ShareOpenGLContexts leads to; exported for modules that come late, but in no header.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext *context);
Q_GUI_EXPORT QOpenGLContext *qt_gl_global_share_context();
QT_END_NAMESPACE

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr char noSandbox[] = "QTWEBENGINE_DISABLE_SANDBOX";

bool isEngineWhole()
{
    const QString program = qEnvironmentVariable("QTWEBENGINEPROCESS_PATH",
        QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath) + u"/QtWebEngineProcess"_s);
    const QString data = qEnvironmentVariable("QTWEBENGINE_RESOURCES_PATH",
        QLibraryInfo::path(QLibraryInfo::DataPath) + u"/resources"_s);
    return QFileInfo(program).isExecutable() && QFileInfo::exists(data + u"/qtwebengine_resources.pak"_s);
}

/// Tried in a child, which does nothing but that.
bool canMakeUserNamespace()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::unshare(CLONE_NEWUSER) == 0 ? 0 : 1);
    int status = -1;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool canSandbox()
{
    return ::geteuid() != 0 && canMakeUserNamespace();
}

/// The engine wants one to be there before it is loaded, though its pages are drawn without it. It is never
/// created, and so loads no driver; asking for it at the start of the program would.
void provideShareContext()
{
    if (!qt_gl_global_share_context())
        qt_gl_set_global_share_context(new QOpenGLContext(QCoreApplication::instance()));
}

decltype(&tuppiWebViews) resolveModule()
{
    // Beside the executable when built, in a folder of the libraries when installed.
    const QString folder = QCoreApplication::applicationDirPath();
    for (const QString &place : {folder, folder + u"/../lib/tuppi-transcriber"_s}) {
        QLibrary module(place + u"/tuppi-viewer.so"_s);
        if (const QFunctionPointer function = module.resolve("tuppiWebViews"))
            return reinterpret_cast<decltype(&tuppiWebViews)>(function);
    }
    return nullptr;
}

} // namespace

LoadedWebViews LoadWebViews(Sandboxing sandboxing)
{
    if (!isEngineWhole())
        return {nullptr, WebViewsLack::Missing};
    if (sandboxing == Sandboxing::GivenUp)
        qputenv(noSandbox, "1");
    else if (!qEnvironmentVariableIsSet(noSandbox) && !canSandbox())
        return {nullptr, WebViewsLack::Sandbox};
    provideShareContext();
    const auto makeViews = resolveModule();
    return {std::unique_ptr<WebViews>(makeViews ? makeViews() : nullptr), WebViewsLack::Missing};
}

} // namespace tuppi
