#include "store/Settings.h"

#include "core/FileDescriptor.h"
#include "core/Files.h"
#include "store/Jobs.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace engine {

QString libraryFolder(Database &database)
{
    const QString chosen = database.value(u"SELECT value FROM settings WHERE name = 'library'"_s).toString();
    return chosen.isEmpty() ? database.paths().defaultLibrary : chosen;
}

void requireWritable(const QString &folder)
{
    QByteArray name = QFile::encodeName(folder + u"/.tuppi-XXXXXX"_s);
    const FileDescriptor probe(::mkstemp(name.data()));
    if (!probe.valid())
        throw systemFailure(u"The transcripts folder “"_s + folder + u"” cannot be written"_s, errno);
    ::unlink(name.constData());
}

void changeLibrary(Database &database, const QString &path)
{
    if (!QDir::isAbsolutePath(path))
        throw Failure(u"The transcripts folder must be given as a full path, not as “"_s + path + u"”."_s);
    const QString folder = QDir::cleanPath(path);
    makeFolder(folder, u"The transcripts folder “"_s + folder + u"” could not be made"_s);
    requireWritable(folder);
    Transaction transaction(database);
    database.run(u"INSERT INTO settings (name, value) VALUES ('library', ?) "
                 "ON CONFLICT (name) DO UPDATE SET value = excluded.value"_s,
                 {folder});
    transaction.commit();
    announceChange(database.paths());
}

} // namespace engine
