#include "recognise/WhisperProgram.h"

#include "core/ArgumentVector.h"
#include "core/Failure.h"
#include "recognise/WhisperOutput.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int lookMs = 200;
constexpr qint64 idleLooks = 10; // in the time after which it counts as stuck
constexpr int priority = 10;
constexpr qsizetype longestRest = 4096;

[[noreturn]] void becomeWhisper(const ArgumentVector &command, int messages, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
    ::signal(SIGTERM, SIG_DFL);
    ::setpriority(PRIO_PROCESS, 0, priority);
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(null, 0);
    ::dup2(null, 1);
    ::dup2(messages, 2);
    ::execv(command.program(), command.arguments());
    ::_exit(127);
}

// Processor time of everything in this process's group but itself, in the kernel's ticks: whisper-cli may be
// a script around the real one.
qint64 groupTicks()
{
    const QByteArray group = QByteArray::number(::getpgrp());
    qint64 ticks = 0;
    const QStringList processes = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &process : processes) {
        QFile stat(u"/proc/"_s + process + u"/stat"_s);
        if (process.toInt() == ::getpid() || !stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray line = stat.readAll();
        const QByteArrayList fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 14 && fields[2] == group)
            ticks += fields[11].toLongLong() + fields[12].toLongLong();
    }
    return ticks;
}

// Tells from outside whether the program still does something.
class Watch
{
public:
    explicit Watch(const WhisperPatience &patience)
        : m_patience(patience)
    {
        spoke();
    }

    void spoke()
    {
        m_sinceWord.start();
        m_sinceWork.start();
        m_sinceLook.start();
    }

    bool stuck()
    {
        if (m_sinceWord.hasExpired(m_patience.silentMs))
            return true;
        if (!m_sinceLook.hasExpired(m_patience.idleMs / idleLooks))
            return false;
        m_sinceLook.start();
        if (const qint64 ticks = groupTicks(); ticks != m_ticks) {
            m_ticks = ticks;
            m_sinceWork.start();
        }
        return m_sinceWork.hasExpired(m_patience.idleMs);
    }

private:
    WhisperPatience m_patience;
    QElapsedTimer m_sinceWord;
    QElapsedTimer m_sinceWork;
    QElapsedTimer m_sinceLook;
    qint64 m_ticks = 0;
};

} // namespace

WhisperProgram::WhisperProgram(const QString &program, const QStringList &arguments)
{
    const QString doing = u"whisper-cli could not be started"_s;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw systemFailure(doing, errno);
    m_messages = FileDescriptor(ends[0]);
    const FileDescriptor writing(ends[1]);
    const ArgumentVector command(program, arguments);
    const pid_t parent = ::getpid();
    m_child = ::fork();
    if (m_child < 0)
        throw systemFailure(doing, errno);
    if (m_child == 0)
        becomeWhisper(command, writing.get(), parent);
}

WhisperProgram::~WhisperProgram()
{
    if (m_child < 0)
        return;
    ::kill(m_child, SIGKILL);
    while (::waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool WhisperProgram::ended(int &status)
{
    if (::waitpid(m_child, &status, WNOHANG) != m_child)
        return false;
    m_child = -1;
    return true;
}

// Whether it has said something. Once it has closed its messages there is nothing to wait for but its end.
bool WhisperProgram::readMessages()
{
    pollfd waited{m_messages.get(), POLLIN, 0};
    if (::poll(&waited, 1, lookMs) <= 0)
        return false;
    char block[4096];
    const ssize_t count = ::read(m_messages.get(), block, sizeof block);
    if (count == 0)
        m_messages.reset(); // a descriptor of -1 makes poll wait
    if (count > 0)
        m_written = m_written.right(longestRest) + QByteArray(block, count);
    return count > 0;
}

int WhisperProgram::finish(const WhisperPatience &patience, const std::function<void(int percent)> &progress)
{
    Watch watch(patience);
    int shown = 0;
    int status = 0;
    while (!ended(status)) {
        if (readMessages())
            watch.spoke();
        if (const std::optional<int> percent = readWhisperProgress(m_written); percent && *percent > shown) {
            shown = *percent;
            progress(shown);
        }
        if (watch.stuck())
            throw RecogniserBroke();
    }
    if (!WIFEXITED(status))
        throw RecogniserBroke();
    return WEXITSTATUS(status);
}

} // namespace engine
