#include "actions/Removal.h"

#include "engine/Stages.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/LibraryTexts.h"

#include <QDir>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

const QString usualLibrary = u"Documents/CallsRawFiles"_s;

bool holds(const QString &folder, const QString &path)
{
    return path == folder || folder == "/"_L1 || path.startsWith(folder + u'/');
}

} // namespace

bool IsRemovable(const QJsonObject &row)
{
    return !row.isEmpty() && !row.contains("local"_L1) && !IsActiveStage(row.value("status"_L1).toString());
}

JobList FinishedRows(const Rows &rows)
{
    JobList finished(rows.jobs.blocks());
    for (qsizetype index = 0; index < rows.jobs.size(); ++index) {
        if (!IsActiveStage(rows.jobs.statusAt(index)))
            finished.append(rows.jobs.places().at(index));
    }
    return finished;
}

QStringList IdsOf(const JobList &rows)
{
    QStringList ids;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const QString id = rows.idAt(index);
        if (!id.isEmpty())
            ids.append(id);
    }
    return ids;
}

QList<DoomedFolder> FoldersOf(const JobList &rows)
{
    QList<DoomedFolder> folders;
    for (const QJsonObject &row : rows) {
        const QString path = row.value("call_dir"_L1).toString();
        if (!path.isEmpty())
            folders.append({path, row.value("title"_L1).toString(QDir(path).dirName())});
    }
    return folders;
}

bool IsTranscriptFolder(const QString &path, const QString &library)
{
    const QString folder = QDir::cleanPath(path);
    return QDir::isAbsolutePath(folder) && !holds(folder, QDir::cleanPath(QDir::homePath()))
        && !holds(folder, QDir::cleanPath(LibraryPath(library)));
}

QString LibraryPath(const QString &library)
{
    return library.isEmpty() ? QDir::homePath() + u'/' + usualLibrary : library;
}

QString CancelTitle(const QJsonObject &row)
{
    return Fill(L(u"Cancel “%@”?"_s), {row.value("title"_L1).toString(L(u"this transcription"_s))});
}

QString RemoveTitle(const QJsonObject &row)
{
    return Fill(L(u"Remove “%@”?"_s), {row.value("title"_L1).toString(L(u"this transcript"_s))});
}

QString ClearListTitle(qsizetype rows)
{
    if (rows == 1)
        return L(u"Clear 1 finished transcript from the list?"_s);
    return Fill(L(u"Clear all %lu finished transcripts from the list?"_s), {rows});
}

QString RemoveDetail(const QString &library)
{
    const QString place = library.isEmpty() ? u"~/"_s + usualLibrary : AbbreviatedPath(library, QDir::homePath());
    return Fill(L(u"Remove from List hides it here; the transcript stays in %@ (File › Show Hidden Transcripts "
                  u"brings it back).\n\nMove to Trash puts the transcript folder in the Trash — you can still "
                  u"restore it from there. Your original audio files are never touched."_s),
                {place});
}

QString TrashTitle(qsizetype rows)
{
    return Fill(L(u"Move %lu transcript folders to the Trash?"_s), {rows});
}

QString TrashFailureLine(const DoomedFolder &folder, const QString &reason)
{
    return Fill(L(u"%@: %@"_s), {folder.title, reason});
}

} // namespace tuppi
