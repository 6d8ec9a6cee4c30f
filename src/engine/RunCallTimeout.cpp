#include "engine/RunCallTimeout.h"

#include "settings/L.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern "C" { // glibc 2.36 leaves the linkage out of this header
#include <sys/pidfd.h>
}

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

class Descriptor
{
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ~Descriptor() { close(); }
    Q_DISABLE_COPY(Descriptor)

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    void reset(int descriptor)
    {
        close();
        m_descriptor = descriptor;
    }
    void close()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
    }

private:
    int m_descriptor;
};

struct Pipe
{
    Descriptor read;
    Descriptor write;

    bool open()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return false;
        read.reset(ends[0]);
        write.reset(ends[1]);
        return ::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0;
    }
};

/// Hands what a pipe holds now to `take`; closes the reading end at the end of the stream.
template <typename Take> void drain(Descriptor &pipe, Take take)
{
    std::array<char, 65536> chunk;
    while (pipe.isOpen()) {
        const ssize_t count = ::read(pipe.get(), chunk.data(), chunk.size());
        if (count > 0) {
            take(QByteArrayView(chunk.data(), count));
        } else if (count < 0 && errno == EINTR) {
            continue;
        } else if (count < 0 && errno == EAGAIN) {
            return;
        } else {
            pipe.close();
        }
    }
}

/// The words as the system takes them, for as long as they live.
std::vector<char *> pointersTo(QList<QByteArray> &words)
{
    std::vector<char *> pointers;
    pointers.reserve(size_t(words.size()) + 1);
    for (QByteArray &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Starts the child. Returns 0 and its pid, or an error number.
int spawn(const QString &interpreter, const QStringList &arguments, const Pipe &out, const Pipe &err,
          const RunOptions &options, pid_t *pid)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    const auto release = qScopeGuard([&] {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    });

    posix_spawn_file_actions_adddup2(&actions, out.write.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.write.get(), STDERR_FILENO);
    if (options.keepOpen >= 0) // clears close-on-exec in the child
        posix_spawn_file_actions_adddup2(&actions, options.keepOpen, options.keepOpen);

    // A group of its own: an interrupt typed at the application's terminal is not meant for the engine.
    sigset_t none, defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        sigaddset(&defaults, signal);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    QList<QByteArray> words{QFile::encodeName(interpreter)};
    for (const QString &argument : arguments)
        words.append(QFile::encodeName(argument));
    QList<QByteArray> variables = options.environment;
    const std::vector<char *> argv = pointersTo(words);
    const std::vector<char *> envp = pointersTo(variables);
    return posix_spawn(pid, argv.front(), &actions, &attributes, argv.data(), envp.data());
}

RawReply launchFailure(int error)
{
    QString text = QString::fromLocal8Bit(std::strerror(error));
    if (error == 0 || text.isEmpty())
        text = L(u"Could not start Tuppi Transcriber"_s);
    return {-1, {}, text.toUtf8()};
}

/// Whether the child has ended. It stays to be waited for.
bool hasEnded(pid_t pid)
{
    siginfo_t info{};
    return ::waitid(P_PID, id_t(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == pid;
}

int exitStatus(pid_t pid)
{
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
}

/// Follows a running child: both streams at once, so that neither can fill up and block it, its end, and
/// the limit.
void follow(pid_t pid, Pipe &out, Pipe &err, const RunOptions &options, RawReply &reply)
{
    const double limit = options.timeoutSeconds;
    const auto takeErr = [&](QByteArrayView piece) { reply.err.append(piece); };
    const auto takeOut = [&](QByteArrayView piece) {
        if (options.out)
            options.out(piece);
        else
            reply.out.append(piece);
    };
    // Not every system gives a handle on a process; without one the child is looked at again and again.
    const Descriptor child(::pidfd_open(pid, 0));
    constexpr qint64 lookMilliseconds = 50;
    const QDeadlineTimer deadline = limit > 0 ? QDeadlineTimer(qint64(limit * 1000)) : QDeadlineTimer(QDeadlineTimer::Forever);
    bool running = true;
    bool terminated = false;

    while (running || ((out.read.isOpen() || err.read.isOpen()) && !deadline.hasExpired())) {
        if (running && deadline.hasExpired() && !terminated) {
            ::kill(-pid, SIGTERM);
            terminated = true;
        }
        std::array<pollfd, 3> watched{{{out.read.get(), POLLIN, 0},
                                       {err.read.get(), POLLIN, 0},
                                       {running ? child.get() : -1, POLLIN, 0}}};
        qint64 left = deadline.isForever() || terminated ? -1 : qMin<qint64>(deadline.remainingTime() + 1, 1 << 30);
        if (running && !child.isOpen())
            left = left < 0 ? lookMilliseconds : qMin(left, lookMilliseconds);
        if (::poll(watched.data(), watched.size(), int(left)) < 0 && errno != EINTR)
            break;
        drain(out.read, takeOut);
        drain(err.read, takeErr);
        if (running)
            running = child.isOpen() ? watched[2].revents == 0 : !hasEnded(pid);
    }
    reply.status = exitStatus(pid);
    drain(out.read, takeOut);
    drain(err.read, takeErr);
}

} // namespace

QString EngineFolder()
{
    return QDir::homePath() + u"/Library/Application Support/Larkspire"_s;
}

QString EnginePath()
{
    return EngineFolder() + u"/runtime/call"_s;
}

QString DecodeStream(const QByteArray &bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString();
}

EngineReply Decoded(const RawReply &raw)
{
    return {raw.status, DecodeStream(raw.out), DecodeStream(raw.err)};
}

QList<QByteArray> CurrentEnvironment()
{
    QList<QByteArray> variables;
    for (char **variable = environ; variable && *variable; ++variable)
        variables.append(*variable);
    return variables;
}

// QProcess stops reading when bash itself has ended and so loses what bash's own child still writes; here
// the streams are read to their end.
RawReply RunAndWait(const QString &interpreter, const QStringList &arguments, const RunOptions &options)
{
    if (options.before)
        options.before();
    Pipe out, err;
    if (!out.open() || !err.open())
        return launchFailure(errno);
    pid_t pid = -1;
    const int error = spawn(interpreter, arguments, out, err, options, &pid);
    if (error != 0)
        return launchFailure(error);
    out.write.close();
    err.write.close();
    RawReply reply;
    follow(pid, out, err, options, reply);
    return reply;
}

RawReply detail::runEngine(const QStringList &arguments, const RunOptions &options)
{
    return RunAndWait(u"/bin/bash"_s, QStringList(EnginePath()) + arguments, options);
}

void RunCallTimeout(const QStringList &arguments, QObject *context, Completion completion, double timeoutSeconds)
{
    RunCallRead(arguments, context, {timeoutSeconds, -1}, Decoded,
                [completion = std::move(completion)](const EngineReply &reply) {
                    if (completion)
                        completion(reply);
                });
}

} // namespace tuppi
