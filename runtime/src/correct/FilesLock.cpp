#include "correct/FilesLock.h"

#include "core/Failure.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace engine {

FilesLock::FilesLock(const Paths &paths, Patience patience)
{
    constexpr int longestWaitMs = 15000; // as long as for the store
    constexpr auto lookEvery = std::chrono::milliseconds(5);
    FileDescriptor file(
        ::open(QFile::encodeName(paths.filesLock).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!file.valid())
        throw systemFailure(u"The lock of the transcripts could not be opened"_s, errno);
    const QDeadlineTimer deadline(patience == Patience::Wait ? longestWaitMs : 0);
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (patience == Patience::JustTry)
            return;
        if (deadline.hasExpired())
            throw Failure(u"Another change to the transcripts takes too long. Try again."_s);
        std::this_thread::sleep_for(lookEvery);
    }
    m_file = std::move(file);
}

} // namespace engine
