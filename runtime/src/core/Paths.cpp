#include "core/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace engine {

Paths Paths::under(const QString &home)
{
    Paths paths;
    paths.home = home;
    paths.base = home + u"/Library/Application Support/Larkspire"_s;
    paths.store = paths.base + u"/store"_s;
    paths.database = paths.store + u"/jobs.sqlite"_s;
    paths.workerLock = paths.store + u"/worker.lock"_s;
    paths.filesLock = paths.store + u"/files.lock"_s;
    paths.changed = paths.base + u"/changed"_s;
    paths.reserve = paths.store + u"/reserve"_s;
    paths.work = paths.store + u"/work"_s;
    paths.models = paths.base + u"/models"_s;
    paths.defaultLibrary = home + u"/Documents/CallsRawFiles"_s;
    return paths;
}

Paths Paths::ofThisUser()
{
    return under(QDir::homePath());
}

QString executableFolder()
{
    return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path();
}

} // namespace engine
