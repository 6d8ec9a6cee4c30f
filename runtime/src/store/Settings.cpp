#include "store/Settings.h"

#include "core/FileDescriptor.h"
#include "core/Files.h"
#include "store/Jobs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QString setting(Database &database, const QString &name)
{
    return database.value(u"SELECT value FROM settings WHERE name = ?"_s, {name}).toString();
}

void set(Database &database, const QString &name, const QString &value)
{
    database.run(u"INSERT INTO settings (name, value) VALUES (?, ?) "
                 "ON CONFLICT (name) DO UPDATE SET value = excluded.value"_s,
                 {name, value});
}

// Whether another disk is mounted there than above it.
bool isDisk(const QString &folder)
{
    struct stat itself;
    struct stat above;
    return ::stat(QFile::encodeName(folder).constData(), &itself) == 0 &&
           ::stat(QFile::encodeName(folder + u"/.."_s).constData(), &above) == 0 && itself.st_dev != above.st_dev;
}

// Removes again, unless kept, what making a folder has made; only while it is empty.
class NewFolder
{
public:
    explicit NewFolder(const QString &folder)
    {
        for (QString path = folder; !QFileInfo::exists(path) && path.size() > 1;
             path = QFileInfo(path).path())
            m_missing.append(path);
    }
    ~NewFolder()
    {
        for (const QString &path : m_missing)
            ::rmdir(QFile::encodeName(path).constData());
    }
    NewFolder(const NewFolder &) = delete;
    NewFolder &operator=(const NewFolder &) = delete;

    void keep() { m_missing.clear(); }

private:
    QStringList m_missing; // the innermost first
};

} // namespace

Library libraryInUse(Database &database)
{
    const QString chosen = setting(database, u"library"_s);
    if (chosen.isEmpty())
        return {database.paths().defaultLibrary, false};
    return {chosen, setting(database, u"library_is_disk"_s) == u"1"};
}

bool isAway(const Library &library)
{
    return library.isDisk && QFileInfo(library.folder).isDir() && !isDisk(library.folder) &&
           QDir(library.folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void requireWritable(const QString &folder)
{
    QByteArray name = QFile::encodeName(folder + u"/.tuppi-XXXXXX"_s);
    const QString doing = u"The transcripts folder “"_s + folder + u"” cannot be written"_s;
    const FileDescriptor probe(::mkstemp(name.data()));
    if (!probe.valid())
        throw systemFailure(doing, errno);
    ::unlink(name.constData());
    // A full disk may still have room for names.
    writeAll(probe.get(), QByteArray(4096, 'x'), doing);
    if (::fsync(probe.get()) != 0)
        throw systemFailure(doing, errno);
}

void requireLibrary(const Library &library)
{
    const QString &folder = library.folder;
    if (folder == Paths::ofThisUser().defaultLibrary && !library.isDisk)
        makeFolder(folder, u"The transcripts folder “"_s + folder + u"” could not be made"_s);
    else if (!QFileInfo(folder).isDir() || isAway(library))
        throw Failure(u"The transcripts folder “"_s + folder +
                      u"” is not there. Connect its disk, or choose another folder in the Settings."_s);
    requireWritable(folder);
}

void changeLibrary(Database &database, const QString &path)
{
    if (!QDir::isAbsolutePath(path))
        throw Failure(u"The transcripts folder must be given as a full path, not as “"_s + path + u"”."_s);
    // What is not UTF-8 was lost on the way in.
    if (path.contains(QChar::ReplacementCharacter))
        throw Failure(u"The name of the transcripts folder “"_s + path +
                      u"” cannot be used. Choose another one."_s);
    const QString folder = QDir::cleanPath(path);
    NewFolder made(folder);
    makeFolder(folder, u"The transcripts folder “"_s + folder + u"” could not be made"_s);
    requireWritable(folder);
    Transaction transaction(database);
    set(database, u"library"_s, folder);
    set(database, u"library_is_disk"_s, isDisk(folder) ? u"1"_s : u"0"_s);
    transaction.commit();
    made.keep();
    announceChange(database.paths());
}

QString textModel(Database &database)
{
    return setting(database, u"text_model"_s);
}

void setTextModel(Database &database, const QString &name)
{
    Transaction transaction(database);
    set(database, u"text_model"_s, name);
    transaction.commit();
}

} // namespace engine
