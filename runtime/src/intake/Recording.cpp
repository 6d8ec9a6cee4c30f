#include "intake/Recording.h"

#include "core/Failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t blockSize = 1 << 20;

QString safeExtension(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool plain = suffix.size() <= 8 && std::ranges::all_of(suffix, [](QChar c) {
                           return (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9');
                       });
    return plain ? suffix : QString();
}

// Plain reading and writing, for where the kernel cannot copy by itself. Goes on where both files stand.
void copyByHand(int from, int to, const QString &doing)
{
    std::vector<char> block(blockSize);
    for (;;) {
        const ssize_t count = ::read(from, block.data(), block.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw systemFailure(doing, errno);
        if (count == 0)
            return;
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = ::write(to, block.data() + done, size_t(count - done));
            if (written < 0 && errno != EINTR)
                throw systemFailure(doing, errno);
            done += std::max<ssize_t>(written, 0);
        }
    }
}

void copyBytes(int from, int to, const QString &doing)
{
    if (::ioctl(to, FICLONE, from) == 0)
        return;
    for (;;) {
        const ssize_t count = ::copy_file_range(from, nullptr, to, nullptr, blockSize * 16, 0);
        if (count == 0)
            return copyByHand(from, to,
                              doing); // some file systems say 0 for files that they make up on reading
        if (count > 0 || errno == EINTR)
            continue;
        if (errno == ENOSPC || errno == EDQUOT || errno == EIO)
            throw systemFailure(doing, errno);
        return copyByHand(from, to, doing);
    }
}

} // namespace

Recording openRecording(const QString &path)
{
    Recording recording;
    recording.path = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const QString named = u"“"_s + QFileInfo(recording.path).fileName() + u"”"_s;
    // Not blocking: a pipe without a writer would never open.
    recording.file = FileDescriptor(
        ::open(QFile::encodeName(recording.path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!recording.file.valid() && errno == ENOENT)
        throw Failure(u"The file "_s + named + u" is not there any more."_s);
    struct stat info
    {
    };
    if (!recording.file.valid() || ::fstat(recording.file.get(), &info) != 0)
        throw systemFailure(u"The file "_s + named + u" could not be read"_s, errno);
    if (S_ISDIR(info.st_mode))
        throw Failure(named + u" is a folder. Choose a recording inside it."_s);
    if (!S_ISREG(info.st_mode))
        throw Failure(named + u" is not a file that can be transcribed."_s);
    if (info.st_size == 0)
        throw Failure(u"The file "_s + named + u" is empty."_s);
    recording.size = info.st_size;
    recording.modified = QDateTime::fromSecsSinceEpoch(info.st_mtim.tv_sec);
    recording.title = QFileInfo(recording.path).completeBaseName().simplified();
    if (recording.title.isEmpty())
        recording.title = u"Recording"_s;
    recording.extension = safeExtension(recording.path);
    return recording;
}

void copyRecording(const Recording &recording, const QString &target)
{
    const QString doing = u"The recording could not be copied to “"_s + QFileInfo(target).path() + u"”"_s;
    const FileDescriptor copy(
        ::open(QFile::encodeName(target).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!copy.valid())
        throw systemFailure(doing, errno);
    copyBytes(recording.file.get(), copy.get(), doing);
    struct stat info
    {
    };
    if (::fstat(copy.get(), &info) != 0)
        throw systemFailure(doing, errno);
    // Longer is well: it was still being written.
    if (info.st_size < recording.size)
        throw Failure(u"The recording became shorter while it was copied. Try again."_s);
    // The copy keeps the time of the original: it may be the only sign of when it was recorded.
    const timespec time{recording.modified.toSecsSinceEpoch(), 0};
    const std::array<timespec, 2> times{time, time};
    ::futimens(copy.get(), times.data());
    if (::fsync(copy.get()) != 0)
        throw systemFailure(doing, errno);
}

} // namespace engine
