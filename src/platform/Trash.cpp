#include "platform/Trash.h"

#include "engine/RunCallTimeout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryFile>
#include <QUrl>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

QString dataHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

/// With the rights of the effective user, which are those that a rename goes by.
bool mayWrite(const QString &folder)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(folder).constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

/// The folder around "files" and "info" is one person's: nobody else is to read what was thrown away.
void keepPrivate(const QString &trash)
{
    QFile::setPermissions(trash, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool isSharedTrash(const QString &path)
{
    struct stat found{};
    return ::lstat(QFile::encodeName(path).constData(), &found) == 0 && S_ISDIR(found.st_mode)
        && (found.st_mode & S_ISVTX) != 0;
}

/// The trash that Qt takes for what lies in that folder.
QString trashFor(const QString &folder)
{
    const QStorageInfo drive(folder);
    if (drive == QStorageInfo(QDir::home()))
        return dataHome() + u"/Trash"_s;
    const QString top = QDir(drive.rootPath()).filePath(u".Trash"_s);
    const QString user = QString::number(::geteuid());
    return isSharedTrash(top) ? top + u'/' + user : top + u'-' + user;
}

/// Qt looks for a free name until it could note an origin under it: for ever, where nothing can be noted.
/// And without the trash's folder it moves the item into the working folder and calls that a success.
bool takesMore(const QString &trash)
{
    if (!QDir().mkpath(trash))
        return false;
    keepPrivate(trash);
    const QDir place(trash);
    if (!place.mkpath(u"files"_s) || !place.mkpath(u"info"_s) || !mayWrite(place.filePath(u"files"_s)))
        return false;
    return QTemporaryFile(place.filePath(u"info/XXXXXX.part"_s)).open();
}

/// Qt notes an item's origin under its name, with a number where that one is taken; where the whole is too long for the
/// drive, it tries the next number, for ever.
bool hasRoomForName(const QString &trash, const QString &name)
{
    constexpr qsizetype number = std::char_traits<char>::length("-0001");
    constexpr long usual = 255;
    const QString info = trash + u"/info"_s;
    const QString note = name + u".trashinfo"_s;
    const long longest = ::pathconf(QFile::encodeName(info).constData(), _PC_NAME_MAX);
    const qsizetype added = QFileInfo::exists(info + u'/' + note) ? number : 0;
    return QFile::encodeName(note).size() + added <= (longest > 0 ? longest : usual);
}

/// Out of its folder, and itself: a folder that moves gets another parent, which is written into it.
bool mayBeMoved(const QFileInfo &item)
{
    return mayWrite(item.absolutePath()) && (!item.isDir() || item.isSymLink() || mayWrite(item.absoluteFilePath()));
}

/// Qt before 6.5 notes the origin as it is, but whoever restores it takes every "%" for the begin of a code.
void encodeOrigin(const QString &pathInTrash, const QString &origin)
{
    const QFileInfo item(pathInTrash);
    const QString note = QFileInfo(item.path()).path() + u"/info/"_s + item.fileName() + u".trashinfo"_s;
    QFile noted(note);
    if (!noted.open(QIODevice::ReadOnly))
        return;
    const QString text = QString::fromUtf8(noted.readAll());
    const QString path = text.section(u"\nPath="_s, 1).section(u'\n', 0, 0);
    const QByteArray encoded = QUrl::toPercentEncoding(path, "/");
    if (path.isEmpty() || !origin.endsWith(path) || encoded == path.toUtf8())
        return;
    QSaveFile info(note); // the old note stays whole where no new one can be written
    if (!info.open(QIODevice::WriteOnly))
        return;
    info.write(QString(text).replace(u"\nPath="_s + path, u"\nPath="_s + QString::fromLatin1(encoded)).toUtf8());
    info.commit();
}

} // namespace

TrashResult MoveToTrash(const QString &path)
{
    const QFileInfo item(path);
    if (path.isEmpty() || !(item.exists() || item.isSymLink()))
        return {TrashOutcome::Gone, {}};
    if (!mayBeMoved(item))
        return {TrashOutcome::Forbidden, {}};
    const QString trash = trashFor(item.absolutePath());
    if (!takesMore(trash))
        return {TrashOutcome::NoTrash, {}};
    if (!hasRoomForName(trash, item.fileName()))
        return {TrashOutcome::Failed, qt_error_string(ENAMETOOLONG)};
    QFile file(item.absoluteFilePath());
    if (!file.moveToTrash())
        return {TrashOutcome::Failed, file.errorString()};
    if (QDir::isRelativePath(file.fileName())) {
        QFile::rename(QDir::current().absoluteFilePath(file.fileName()), item.absoluteFilePath());
        return {TrashOutcome::Failed, {}};
    }
    encodeOrigin(file.fileName(), item.absoluteFilePath());
    return {TrashOutcome::Moved, {}};
}

void MoveAllToTrash(const QStringList &paths, QObject *context, std::function<void(const QList<TrashResult> &)> then)
{
    const auto moveAll = [paths] {
        QList<TrashResult> results;
        for (const QString &path : paths)
            results.append(MoveToTrash(path));
        return results;
    };
    RunAside(moveAll, context, std::move(then));
}

} // namespace tuppi
