#include "app/FileLock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tuppi {

// QLockFile remembers a process id and cannot be handed to a child; the kernel's lock can.

FileLock::~FileLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

FileLock::Result FileLock::tryLock()
{
    if (isHeld())
        return Result::Held;
    QDir().mkpath(QFileInfo(m_path).path());
    const int descriptor = ::open(QFile::encodeName(m_path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return Result::Impossible;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const bool elsewhere = errno == EWOULDBLOCK;
        ::close(descriptor);
        return elsewhere ? Result::Elsewhere : Result::Impossible;
    }
    m_descriptor = descriptor;
    return Result::Held;
}

} // namespace tuppi
