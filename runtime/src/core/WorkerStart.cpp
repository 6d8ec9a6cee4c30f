#include "core/WorkerStart.h"

#include "core/Failure.h"
#include "core/WorkerLock.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// All that people do at the computer meanwhile comes first. Linux desktops share processors out among sessions
// before they look at processes, so the priority of the worker's session counts too.
void stepBack(const QByteArray &steps)
{
    ::setpriority(PRIO_PROCESS, 0, std::atoi(steps.constData()));
    const FileDescriptor session(::open("/proc/self/autogroup", O_WRONLY | O_CLOEXEC));
    if (session.valid() && ::write(session.get(), steps.constData(), size_t(steps.size())) < 0)
        errno = 0; // it is only a wish
}

// Between fork and exec only calls that are safe there. The report descriptor closes itself at exec.
[[noreturn]] void becomeWorker(const char *program, int report)
{
    const int null = ::open("/dev/null", O_RDWR);
    for (int fd = 0; fd <= 2; ++fd)
        ::dup2(null, fd);
    const int kept = ::dup3(report, 3, O_CLOEXEC) == 3 || report == 3 ? 3 : report;
    ::close_range(unsigned(kept) + 1, ~0U, 0);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD, SIGQUIT})
        ::signal(number, SIG_DFL);
    int error = 0;
    if (::chdir("/") == 0) {
        ::execl(program, program, static_cast<char *>(nullptr));
    }
    error = errno;
    if (::write(kept, &error, sizeof error) < 0)
        ::_exit(126);
    ::_exit(127);
}

pid_t launch(bool detached)
{
    const QByteArray program = QFile::encodeName(workerProgram());
    const QByteArray steps = qEnvironmentVariableIsSet("TUPPI_NICE") ? qgetenv("TUPPI_NICE") : "10"_ba;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw systemFailure(u"The worker could not be started"_s, errno);
    FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    const pid_t child = ::fork();
    if (child < 0)
        throw systemFailure(u"The worker could not be started"_s, errno);
    if (child == 0) {
        ::setsid();
        stepBack(steps);
        const pid_t grandchild = detached ? ::fork() : 0;
        if (grandchild != 0)
            ::_exit(grandchild > 0 ? 0 : 1);
        becomeWorker(program.constData(), writing.get());
    }
    writing.reset();
    int error = 0;
    bool failed = ::read(reading.get(), &error, sizeof error) == ssize_t(sizeof error);
    int status = 0;
    if ((detached || failed) && ::waitpid(child, &status, 0) == child && detached && status != 0) {
        failed = true;
        error = EAGAIN;
    }
    if (failed)
        throw systemFailure(u"The worker “"_s + QFile::decodeName(program) + u"” could not be started"_s,
                            error);
    return child;
}

} // namespace

QString workerProgram()
{
    return executableFolder() + u"/tuppi-engine-worker"_s;
}

void requireWorker()
{
    if (::access(QFile::encodeName(workerProgram()).constData(), X_OK) != 0)
        throw Failure(u"The engine is not complete: “"_s + workerProgram() +
                      u"” is missing. Install it again."_s);
}

void startWorker(const Paths &paths)
{
    if (!WorkerLock(paths).isHeld())
        launch(true);
}

void startWorkerNowOrWithResume(const Paths &paths)
{
    try {
        startWorker(paths);
    } catch (const Failure &) {
        // What was asked for has happened, and the next "resume" starts a worker: an error here would only have the
        // caller ask for the same again.
    }
}

pid_t startWorkerAsChild(const Paths &paths)
{
    return WorkerLock(paths).isHeld() ? -1 : launch(false);
}

} // namespace engine
