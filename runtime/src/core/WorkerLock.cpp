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

bool WorkerLock::tryTake()
{
    const QByteArray name = QFile::encodeName(m_paths.workerLock);
    FileDescriptor file(::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!file.valid())
        throw systemFailure(u"The worker's lock could not be opened"_s, errno);
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return false;
    m_file = std::move(file);
    return true;
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

std::optional<pid_t> WorkerLock::owner()
{
    if (tryTake()) {
        release();
        return std::nullopt;
    }
    QFile file(m_paths.workerLock);
    const int pid = file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
    return pid > 0 ? std::optional<pid_t>(pid) : std::nullopt;
}

void WorkerLock::release()
{
    m_file.reset();
}

} // namespace engine
