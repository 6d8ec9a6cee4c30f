#include "core/Files.h"

#include "core/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine {

void makeFolder(const QString &path, const QString &doing)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), 0777) == 0)
        return;
    if (errno == ENOENT && path.size() > 1) {
        makeFolder(QFileInfo(path).path(), doing);
        if (::mkdir(name.constData(), 0777) == 0)
            return;
    }
    const int error = errno;
    if (error == EEXIST && QFileInfo(path).isDir())
        return;
    if (error == EEXIST || error == ENOTDIR)
        throw Failure(doing + u": a file stands where the folder “"_s + path + u"” should be."_s);
    throw systemFailure(doing, error);
}

FileDescriptor namelessFile(const QString &folder, QLatin1StringView name)
{
    QByteArray path = QFile::encodeName(folder + u'/' + name + u"-XXXXXX"_s);
    FileDescriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (file.valid())
        ::unlink(path.constData());
    return file;
}

void writeAll(int fd, const QByteArray &bytes, const QString &doing)
{
    if (!tryWriteAll(fd, bytes))
        throw systemFailure(doing, errno);
}

bool tryWriteAll(int fd, QByteArrayView bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(fd, bytes.data(), size_t(bytes.size()));
        if (count < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
    return true;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    writeFile(path, [&](const TakePiece &take) { take(bytes); });
}

void writeFile(const QString &path, const GivePieces &give)
{
    constexpr qsizetype enough = 1 << 16;
    const QString doing = u"“"_s + QFileInfo(path).fileName() + u"” could not be written"_s;
    const QByteArray name = QFile::encodeName(path);
    const QByteArray beside = name + ".part";
    try {
        FileDescriptor file(::open(beside.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (!file.valid())
            throw systemFailure(doing, errno);
        QByteArray waiting;
        give([&](QByteArrayView piece) {
            waiting.append(piece);
            if (waiting.size() >= enough)
                writeAll(file.get(), std::exchange(waiting, {}), doing);
        });
        writeAll(file.get(), waiting, doing);
        if (::fsync(file.get()) != 0)
            throw systemFailure(doing, errno);
        if (::rename(beside.constData(), name.constData()) != 0)
            throw systemFailure(doing, errno);
    } catch (...) {
        ::unlink(beside.constData());
        throw;
    }
}

QByteArray wholeOf(const GivePieces &give)
{
    QByteArray whole;
    give([&](QByteArrayView piece) { whole.append(piece); });
    return whole;
}

std::optional<QByteArray> readFile(const QString &path, const QString &doing)
{
    const FileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    if (!file.valid() && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    if (!file.valid())
        throw systemFailure(doing, errno);
    constexpr qsizetype blockSize = 1 << 16;
    QByteArray bytes;
    for (;;) {
        const qsizetype size = bytes.size();
        bytes.resize(size + blockSize);
        const ssize_t count = ::read(file.get(), bytes.data() + size, blockSize);
        bytes.resize(size + std::max<ssize_t>(count, 0));
        if (count == 0)
            return bytes;
        if (count < 0 && errno == EISDIR)
            return std::nullopt;
        if (count < 0 && errno != EINTR)
            throw systemFailure(doing, errno);
    }
}

void syncFolder(const QString &path)
{
    const FileDescriptor folder(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.valid())
        ::fsync(folder.get());
}

qint64 roomAt(const QString &path)
{
    struct statvfs info
    {
    };
    if (::statvfs(QFile::encodeName(path).constData(), &info) != 0)
        return -1;
    return qint64(info.f_bavail) * qint64(info.f_frsize);
}

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace engine
