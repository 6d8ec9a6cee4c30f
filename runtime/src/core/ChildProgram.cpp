#include "core/ChildProgram.h"

#include "core/ArgumentVector.h"
#include "core/MemoryFile.h"

#include <QDeadlineTimer>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace engine {

namespace {

[[noreturn]] void becomeProgram(const ArgumentVector &command, int input, int output, pid_t parent)
{
    if (input >= 0 && (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != parent))
        ::_exit(126);
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(input >= 0 ? input : null, 0);
    ::dup2(output, 1);
    ::dup2(null, 2);
    ::execv(command.program(), command.arguments());
    ::_exit(127);
}

// False when the time is over before the end of the output.
bool readToEnd(int fd, QDeadlineTimer deadline, QByteArray &output)
{
    for (;;) {
        pollfd waited{fd, POLLIN, 0};
        const int ready = ::poll(&waited, 1, int(deadline.remainingTime()));
        if (ready == 0)
            return false;
        if (ready < 0 && errno != EINTR)
            return false;
        char block[4096];
        const ssize_t count = ready > 0 ? ::read(fd, block, sizeof block) : -1;
        if (count == 0)
            return true;
        if (count > 0)
            output.append(block, count);
    }
}

} // namespace

ChildProgram::ChildProgram(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    const FileDescriptor reading = input.isEmpty() ? FileDescriptor() : memoryFile(input);
    if (!input.isEmpty() && !reading.valid())
        return;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return;
    m_output = FileDescriptor(ends[0]);
    const FileDescriptor writing(ends[1]);
    const ArgumentVector command(program, arguments);
    const pid_t parent = ::getpid();
    m_child = ::fork();
    if (m_child == 0)
        becomeProgram(command, reading.valid() ? reading.get() : -1, writing.get(), parent);
}

ChildProgram::~ChildProgram()
{
    finish(0);
}

bool ChildProgram::ended(int limitMs)
{
    return m_child < 0 || readToEnd(m_output.get(), QDeadlineTimer(limitMs), m_read);
}

ProgramResult ChildProgram::finish(int limitMs)
{
    ProgramResult result;
    if (m_child < 0)
        return result;
    if (!ended(limitMs))
        ::kill(m_child, SIGKILL);
    result.output = m_read;
    int status = 0;
    while (::waitpid(m_child, &status, 0) < 0 && errno == EINTR) {
    }
    m_child = -1;
    if (WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
    return result;
}

} // namespace engine
