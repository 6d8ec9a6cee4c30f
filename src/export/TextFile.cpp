#include "export/TextFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

const QString textSuffix = u".txt"_s;

/// True when a folder of the current user's stands at `path`, closed to all others by now.
bool isOwnPrivateFolder(const QByteArray &path)
{
    constexpr mode_t ownerOnly = 0700;
    if (::mkdir(path.constData(), ownerOnly) == 0)
        return true;
    // By its descriptor: what the name stands for may change between two looks.
    const int folder = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return false;
    struct stat found{};
    const bool isOwn = ::fstat(folder, &found) == 0 && found.st_uid == ::geteuid() && ::fchmod(folder, ownerOnly) == 0;
    ::close(folder);
    return isOwn;
}

} // namespace

QString WithTextSuffix(const QString &path)
{
    return path.endsWith(textSuffix, Qt::CaseInsensitive) ? path : path + textSuffix;
}

QString FileNameThatFits(const QString &name)
{
    constexpr qsizetype longest = 240; // bytes; 255 are allowed, and the file being written has a longer name
    const qsizetype room = longest - textSuffix.size();
    QString base = name.endsWith(textSuffix) ? name.chopped(textSuffix.size()) : name;
    while (QFile::encodeName(base).size() > room)
        base.chop(base.back().isLowSurrogate() ? 2 : 1);
    return base + textSuffix;
}

std::optional<QString> WriteTextFile(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    const QByteArray bytes = text.toUtf8();
    // On a full disk a write may end early, and closing the file would take that for success.
    const bool isShort = file.write(bytes) != bytes.size() && file.error() == QFile::NoError;
    if (isShort || !file.flush() || file.error() != QFile::NoError) {
        const QString error = isShort ? qt_error_string(ENOSPC) : file.errorString();
        file.cancelWriting();
        return error;
    }
    return file.commit() ? std::nullopt : std::optional(file.errorString());
}

QString PrivateFolder(const QString &parent, const QString &name)
{
    constexpr int most = 100; // names that somebody else can have taken
    if (!QFileInfo(parent).isDir()) // nor is an empty one the root folder
        return {};
    for (int number = 1; number <= most; ++number) {
        const QString path = parent + u'/' + name + (number == 1 ? QString() : u" %1"_s.arg(number));
        if (isOwnPrivateFolder(QFile::encodeName(path)))
            return path;
    }
    return {};
}

} // namespace tuppi
