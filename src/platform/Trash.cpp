#include "platform/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>

#include <memory>

#include <fcntl.h>
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

bool isOnDriveOf(const QString &path, const QString &other)
{
    struct stat one{}, two{};
    return ::lstat(QFile::encodeName(path).constData(), &one) == 0
        && ::lstat(QFile::encodeName(other).constData(), &two) == 0 && one.st_dev == two.st_dev;
}

/// Why a folder that is there could not be moved.
TrashOutcome reasonFor(const QString &path)
{
    const QFileInfo item(path);
    if (!mayWrite(item.absolutePath()) || (item.isDir() && !item.isSymLink() && !mayWrite(path)))
        return TrashOutcome::Forbidden;
    return isOnDriveOf(path, dataHome()) ? TrashOutcome::Failed : TrashOutcome::NoTrash;
}

/// The folder around "files" and "info" is one person's: nobody else is to read what was thrown away.
void keepPrivate(const QString &pathInTrash)
{
    const QString trash = QFileInfo(QFileInfo(pathInTrash).path()).path();
    QFile::setPermissions(trash, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// Qt before 6.5 notes the origin as it is, but whoever restores it takes every "%" for the begin of a code.
void encodeOrigin(const QString &pathInTrash, const QString &origin)
{
    const QFileInfo item(pathInTrash);
    QFile info(QFileInfo(item.path()).path() + u"/info/"_s + item.fileName() + u".trashinfo"_s);
    if (!info.open(QIODevice::ReadWrite))
        return;
    const QString text = QString::fromUtf8(info.readAll());
    const QString path = text.section(u"\nPath="_s, 1).section(u'\n', 0, 0);
    const QByteArray encoded = QUrl::toPercentEncoding(path, "/");
    if (path.isEmpty() || !origin.endsWith(path) || encoded == path.toUtf8())
        return;
    info.seek(0);
    info.resize(0);
    info.write(QString(text).replace(u"\nPath="_s + path, u"\nPath="_s + QString::fromLatin1(encoded)).toUtf8());
}

} // namespace

TrashResult MoveToTrash(const QString &path)
{
    const QFileInfo item(path);
    if (path.isEmpty() || !(item.exists() || item.isSymLink()))
        return {TrashOutcome::Gone, {}};
    // Without this folder Qt moves the item into the working folder and calls that a success.
    if (!QDir().mkpath(dataHome() + u"/Trash"_s))
        return {TrashOutcome::Failed, {}};
    QFile file(item.absoluteFilePath());
    if (!file.moveToTrash())
        return {reasonFor(item.absoluteFilePath()), file.errorString()};
    if (QDir::isRelativePath(file.fileName())) {
        QFile::rename(QDir::current().absoluteFilePath(file.fileName()), item.absoluteFilePath());
        return {TrashOutcome::Failed, {}};
    }
    keepPrivate(file.fileName());
    encodeOrigin(file.fileName(), item.absoluteFilePath());
    return {TrashOutcome::Moved, {}};
}

void MoveAllToTrash(const QStringList &paths, QObject *context, std::function<void(const QList<TrashResult> &)> then)
{
    auto results = std::make_shared<QList<TrashResult>>();
    QThread *thread = QThread::create([paths, results] {
        for (const QString &path : paths)
            results->append(MoveToTrash(path));
    });
    QObject::connect(thread, &QThread::finished, context, [results, then = std::move(then)] { then(*results); });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

} // namespace tuppi
