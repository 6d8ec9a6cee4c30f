#include "intake/CallDir.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "store/Settings.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString temporaryPrefix = u".tuppi-incoming-"_s;
const QString inTheMaking = u"call"_s;
const QString announcedName = u"name of the transcript"_s;
constexpr qsizetype longestTitleBytes = 120;
constexpr qint64 roomToSpare = 1 << 20;

FileDescriptor lockFolder(const QString &folder)
{
    FileDescriptor lock(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock.valid() && ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
        lock.reset();
    return lock;
}

ino_t inodeOf(const QString &path)
{
    struct stat info
    {
    };
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_ino : 0;
}

// Removes what a killed program has put into the library without recording a job for it: the call dir, or the
// empty folder that was to keep its place.
void removePlaced(const QString &library, const QString &workshop, const NewCallDir::IsRecorded &isRecorded)
{
    QFile announced(workshop + u'/' + announcedName);
    if (!announced.open(QIODevice::ReadOnly))
        return;
    const QByteArray inode = announced.readLine().trimmed();
    const QString name = QFile::decodeName(announced.readAll());
    const QString placed = library + u'/' + name;
    if (name.isEmpty() || name.contains(u'/') || name.startsWith(u'.') || isRecorded(name))
        return;
    if (QByteArray::number(quint64(inodeOf(placed))) == inode)
        QDir(placed).removeRecursively();
    else
        ::rmdir(QFile::encodeName(placed).constData());
}

void removeLeftovers(const QString &library, const NewCallDir::IsRecorded &isRecorded)
{
    QDirIterator found(library, {temporaryPrefix + u'*'}, QDir::Dirs | QDir::Hidden);
    while (found.hasNext()) {
        const QString workshop = found.next();
        if (const FileDescriptor lock = lockFolder(workshop); lock.valid()) {
            removePlaced(library, workshop, isRecorded);
            QDir(workshop).removeRecursively();
        }
    }
}

QString safeTitle(const QString &title)
{
    QString safe;
    for (const QChar c : title)
        safe +=
            QStringView(u"/:\\?*\"<>|").contains(c) || c.category() == QChar::Other_Control ? QChar(u'-') : c;
    safe = safe.simplified();
    while (safe.toUtf8().size() > longestTitleBytes)
        safe.chop(safe.back().isLowSurrogate() ? 2 : 1);
    while (safe.endsWith(u'.') || safe.endsWith(u' '))
        safe.chop(1);
    return safe;
}

} // namespace

NewCallDir::NewCallDir(const QString &library, const IsRecorded &isRecorded)
    : m_library(library)
{
    makeFolder(library, u"The transcripts folder “"_s + library + u"” could not be made"_s);
    requireWritable(library);
    removeLeftovers(library, isRecorded);
    // Until it is locked, another start may take the new folder for a leftover and clear it away. Where folders
    // cannot be locked, nobody clears anything away, and the last one is as good as any.
    constexpr int mostTries = 20;
    for (int tries = 0; tries < mostTries && !(m_lock.valid() && QDir(m_workshop).exists()); ++tries) {
        if (!m_workshop.isEmpty())
            QDir().rmdir(m_workshop);
        QByteArray folder = QFile::encodeName(library + u'/' + temporaryPrefix + u"XXXXXX"_s);
        if (!::mkdtemp(folder.data()))
            throw systemFailure(u"The transcripts folder “"_s + library + u"” cannot be written"_s, errno);
        m_workshop = QFile::decodeName(folder);
        m_lock = lockFolder(m_workshop);
    }
    m_folder = m_workshop + u'/' + inTheMaking;
}

NewCallDir::~NewCallDir()
{
    if (!m_folder.isEmpty())
        QDir(m_folder).removeRecursively();
    QDir(m_workshop).removeRecursively();
}

QString NewCallDir::take(const Recording &recording)
{
    const qint64 room = roomAt(m_library);
    if (room >= 0 && room < recording.size + roomToSpare) {
        throw Failure(u"There is not enough room in “"_s + m_library +
                      u"” for a copy of the recording: it needs "_s + sizeText(recording.size + roomToSpare) +
                      u" and "_s + sizeText(room) + u" are free. Make room or choose another folder."_s);
    }
    const QString technical = m_folder + u'/' + CallDirNames::technical;
    makeFolder(technical, u"The transcript's folder could not be made"_s);
    const QString name = recording.extension.isEmpty() ? u"audio"_s : u"audio."_s + recording.extension;
    copyRecording(recording, technical + u'/' + name);
    syncFolder(technical);
    return CallDirNames::technical + u'/' + name;
}

// Says what is about to stand in the library, for whoever comes after a kill.
void NewCallDir::announce(const QString &name)
{
    writeFile(m_workshop + u'/' + announcedName,
              QByteArray::number(quint64(inodeOf(m_folder))) + '\n' + QFile::encodeName(name));
    syncFolder(m_workshop);
}

QString NewCallDir::place(const QString &name)
{
    for (int number = 1;; ++number) {
        const QString numbered = number > 1 ? name + u" (%1)"_s.arg(number) : name;
        const QString folder = m_library + u'/' + numbered;
        const QByteArray target = QFile::encodeName(folder);
        if (inodeOf(folder) != 0)
            continue;
        announce(numbered);
        // An empty folder reserves the name against others, and a rename may take its place.
        if (::mkdir(target.constData(), 0755) != 0) {
            if (errno == EEXIST)
                continue;
            throw systemFailure(u"The transcript's folder could not be made"_s, errno);
        }
        if (std::rename(QFile::encodeName(m_folder).constData(), target.constData()) != 0) {
            const int error = errno;
            ::rmdir(target.constData());
            throw systemFailure(u"The transcript's folder could not be made"_s, error);
        }
        m_folder = folder;
        syncFolder(m_library);
        return folder;
    }
}

QString callDirName(const QDateTime &recordedAt, const QString &title)
{
    return (recordedAt.toString(u"yyyy-MM-dd HH.mm "_s) + safeTitle(title)).trimmed();
}

bool hasFirstTitle(const QString &callDir, const QString &title)
{
    static const QRegularExpression form(u"^\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d ?(.*?)( \\(\\d+\\))?$"_s);
    const QString name = QFileInfo(callDir).fileName();
    const QString first = safeTitle(title);
    const QRegularExpressionMatch match = form.match(name);
    // A title may itself end like the number of a folder.
    return match.hasMatch() && (match.captured(1) == first || match.captured(1) + match.captured(2) == first);
}

} // namespace engine
