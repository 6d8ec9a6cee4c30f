#include "core/Clipboard.h"

#include "core/ArgumentVector.h"
#include "core/Failure.h"
#include "core/MemoryFile.h"

#include <QDeadlineTimer>
#include <QStandardPaths>
#include <QStringList>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int longestWaitMs = 10000;
constexpr auto lookEvery = std::chrono::milliseconds(5);

struct ClipboardTool
{
    QString program;
    QStringList arguments;
};

// Those for the session that this is, the best first. Under Wayland the ones of X11 reach most programs too.
QList<ClipboardTool> toolsForSession()
{
    QList<ClipboardTool> tools;
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        tools.append({u"wl-copy"_s, {u"--type"_s, u"text/plain;charset=utf-8"_s}});
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        tools.append({u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-in"_s}});
        tools.append({u"xsel"_s, {u"--clipboard"_s, u"--input"_s}});
    }
    return tools;
}

// In a session of its own and with nothing of ours open: it lives on as the owner of the clipboard, and
// whoever waits for the end of our output must not wait for the end of that.
[[noreturn]] void becomeTool(const ArgumentVector &command, int text)
{
    ::setsid();
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(text, 0);
    ::dup2(null, 1);
    ::dup2(null, 2);
    ::close_range(3, ~0U, 0);
    ::execv(command.program(), command.arguments());
    ::_exit(127);
}

// It goes into the background by itself once it has the text.
bool run(const QString &path, const QStringList &arguments, const QByteArray &text)
{
    const FileDescriptor file = memoryFile(text);
    if (!file.valid())
        throw systemFailure(u"The text could not be copied"_s, errno);
    const ArgumentVector command(path, arguments);
    ::signal(SIGCHLD, SIG_DFL); // a caller may have had it ignored, and then nobody learns how a child ended
    const pid_t child = ::fork();
    if (child < 0)
        throw systemFailure(u"The text could not be copied"_s, errno);
    if (child == 0)
        becomeTool(command, file.get());
    const QDeadlineTimer deadline(longestWaitMs);
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
        if (deadline.hasExpired()) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(lookEvery);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

void copyToClipboard(const QString &text)
{
    const QList<ClipboardTool> tools = toolsForSession();
    if (tools.isEmpty())
        throw Failure(u"There is no desktop here whose clipboard could take the text."_s);
    QString tried;
    for (const ClipboardTool &tool : tools) {
        const QString path = QStandardPaths::findExecutable(tool.program);
        if (path.isEmpty())
            continue;
        if (run(path, tool.arguments, text.toUtf8()))
            return;
        tried = tool.program;
    }
    if (!tried.isEmpty())
        throw Failure(u"The text could not be copied: “"_s + tried + u"” did not reach the clipboard."_s);
    const QString needed = tools.front().program == u"wl-copy" ? u"wl-clipboard"_s : u"xclip"_s;
    throw Failure(u"Copying needs the program package “"_s + needed + u"”. Install it and try again."_s);
}

} // namespace engine
