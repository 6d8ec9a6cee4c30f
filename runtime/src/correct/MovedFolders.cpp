#include "correct/MovedFolders.h"

#include "intake/CallDir.h"
#include "output/Formats.h"
#include "store/Jobs.h"
#include "store/Settings.h"
#include "store/Transcripts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// A folder in the library that looks like a call dir and belongs to no job.
struct UnknownFolder
{
    QString path;
    QByteArray beginning; // of its segments
};

QString segmentsIn(const QString &folder)
{
    return folder + u'/' + CallDirNames::technical + u"/segments.json"_s;
}

std::vector<UnknownFolder> unknownFolders(Database &database)
{
    const QString library = libraryInUse(database).folder;
    const QSet<QString> known = callDirs(database);
    std::vector<UnknownFolder> unknown;
    for (const QString &name : QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString path = library + u'/' + name;
        QFile segments(segmentsIn(path));
        if (!known.contains(path) && segments.open(QIODevice::ReadOnly))
            unknown.push_back({path, segments.read(1024)});
    }
    return unknown;
}

// What stands in front of the first thing that the job alone does not tell.
QByteArray segmentsBeginning(const Job &job)
{
    const QByteArray empty = segmentsFile(job, {});
    return empty.left(empty.indexOf("\"revision\""));
}

bool isOf(Database &database, const Job &job, const UnknownFolder &folder)
{
    const std::optional<Transcript> transcript = keptTranscript(database, job.seq);
    QFile segments(segmentsIn(folder.path));
    return transcript && segments.open(QIODevice::ReadOnly) &&
           segments.readAll() == segmentsFile(job, *transcript);
}

} // namespace

void findMovedFolders(Database &database)
{
    try {
        std::vector<UnknownFolder> unknown = unknownFolders(database);
        if (unknown.empty())
            return;
        for (const Job &job : readyJobs(database)) {
            if (QFileInfo::exists(job.callDir))
                continue;
            const QByteArray beginning = segmentsBeginning(job);
            const auto found = std::ranges::find_if(unknown, [&](const UnknownFolder &folder) {
                return folder.beginning.startsWith(beginning) && isOf(database, job, folder);
            });
            if (found == unknown.end())
                continue;
            changeJob(database, job.id, [&](Job &moved) {
                if (moved.callDir == job.callDir)
                    moved.callDir = found->path;
            });
            unknown.erase(found);
        }
    } catch (const Failure &) {
        // The store can only be read. They are looked for again with the next command.
    }
}

} // namespace engine
