#include "core/WorkerLock.h"

#include "core/Failure.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace engine {

WorkerLock::WorkerLock(const Paths &paths)
    : m_paths(paths)
{
}

FileDescriptor WorkerLock::locked(int how) const
{
    const QByteArray name = QFile::encodeName(m_paths.workerLock);
    FileDescriptor file(::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!file.valid())
        throw systemFailure(u"The worker's lock could not be opened"_s, errno);
    if (::flock(file.get(), how | LOCK_NB) != 0)
        file.reset();
    return file;
}

bool WorkerLock::tryTake()
{
    FileDescriptor file = locked(LOCK_EX);
    if (!file.valid())
        return false;
    m_file = std::move(file);
    return true;
}

bool WorkerLock::isHeld() const
{
    // Shared: two who look at once must not take each other for a worker.
    return !locked(LOCK_SH).valid();
}

bool WorkerLock::takeSoon()
{
    constexpr int looks = 10;
    constexpr useconds_t pauseMicroseconds = 10'000;
    for (int look = 0; look < looks; ++look) {
        if (tryTake())
            return true;
        ::usleep(pauseMicroseconds);
    }
    return false;
}

void WorkerLock::signOwner()
{
    const QByteArray pid = QByteArray::number(::getpid()) + '\n';
    if (::ftruncate(m_file.get(), 0) == 0 &&
        ::pwrite(m_file.get(), pid.constData(), size_t(pid.size()), 0) < 0)
        errno = 0; // a full disk is no reason not to work
}

std::optional<pid_t> WorkerLock::owner() const
{
    if (!isHeld())
        return std::nullopt;
    QFile file(m_paths.workerLock);
    const int pid = file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
    return pid > 0 ? std::optional<pid_t>(pid) : std::nullopt;
}

void WorkerLock::release()
{
    m_file.reset();
}

} // namespace engine
