#include "output/CallDirWriter.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "intake/CallDir.h"
#include "output/Formats.h"
#include "output/ViewerPage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString stagedPrefix = u".tuppi-revision-"_s;

QString stagedFolder(const QString &callDir, int revision)
{
    return callDir + u'/' + stagedPrefix + QString::number(revision);
}

QString technicalFolder(const QString &callDir)
{
    return callDir + u'/' + CallDirNames::technical;
}

Failure notWritten(const QString &path, int error)
{
    return systemFailure(u"“"_s + QFileInfo(path).fileName() + u"” could not be written"_s, error);
}

// What a rename would only find out when others have moved already.
void requirePlace(const QString &path)
{
    if (QFileInfo(path).isDir())
        throw Failure(u"“"_s + QFileInfo(path).fileName() +
                      u"” could not be written: a folder of that name stands in its place."_s);
    if (::access(QFile::encodeName(QFileInfo(path).path()).constData(), W_OK | X_OK) != 0)
        throw notWritten(path, errno);
}

// Files by their path in the call dir, each made when it is asked for.
using FileMakers = std::vector<std::pair<QString, GivePieces>>;

FileMakers makersOf(const Job &job, const Transcript &transcript)
{
    const QString technical = CallDirNames::technical + u'/';
    const std::vector<Line> &lines = transcript.lines;
    const auto whole = [](auto make) { return [make](const TakePiece &take) { take(make()); }; };
    FileMakers files{
        {technical + u"viewer.html"_s, [&](const TakePiece &take) { giveViewerPage(job, transcript, take); }},
        {CallDirNames::transcript, whole([&] { return transcriptFile(lines); })},
        {technical + u"transcript.txt"_s, whole([&] { return transcript.clean.toUtf8(); })},
        {technical + u"segments.json"_s, [&](const TakePiece &take) { giveSegmentsFile(job, transcript, take); }},
        {technical + u"subtitles.srt"_s, whole([&] { return subRipFile(lines); })},
        {technical + u"subtitles.vtt"_s, whole([&] { return webVttFile(lines); })}};
    if (transcript.summary)
        files.emplace_back(CallDirNames::summary, whole([&] { return summaryFile(job, transcript); }));
    return files;
}

void stage(const QString &callDir, int revision, const FileMakers &files)
{
    // A folder that the user has thrown away is not made again.
    if (!QFileInfo(callDir).isDir())
        throw Failure(u"The transcript's folder is gone: “"_s + callDir + u"”."_s);
    discardStaged(callDir);
    const QString staged = stagedFolder(callDir, revision);
    const QString doing = u"The transcript's folder could not be written"_s;
    // What another attempt has left would be published with the rest.
    if (QFileInfo::exists(staged))
        throw Failure(doing + u": “"_s + staged + u"” is in the way."_s);
    try {
        makeFolder(technicalFolder(callDir), doing);
        makeFolder(technicalFolder(staged), doing);
        for (const auto &[name, give] : files) {
            requirePlace(callDir + u'/' + name);
            writeFile(staged + u'/' + name, give);
        }
        syncFolder(technicalFolder(staged));
        syncFolder(staged);
        syncFolder(callDir);
    } catch (...) {
        discardStaged(callDir);
        throw;
    }
}

} // namespace

CallDirFiles callDirFiles(const Job &job, const Transcript &transcript)
{
    CallDirFiles files;
    for (const auto &[name, give] : makersOf(job, transcript))
        files.emplace_back(name, wholeOf(give));
    return files;
}

void stageFiles(const QString &callDir, int revision, const CallDirFiles &files)
{
    FileMakers makers;
    for (const auto &[name, bytes] : files)
        makers.emplace_back(name, [&made = bytes](const TakePiece &take) { take(made); });
    stage(callDir, revision, makers);
}

void stageAllFiles(const Job &job, const Transcript &transcript)
{
    stage(job.callDir, transcript.revision, makersOf(job, transcript));
}

bool publishFiles(const QString &callDir, int revision)
{
    const QString staged = stagedFolder(callDir, revision);
    // A disk that refuses to tell is no folder that is not there: the texts in it would be given up.
    struct stat folder;
    if (::stat(QFile::encodeName(staged).constData(), &folder) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return false;
        throw notWritten(staged, errno);
    }
    QStringList files;
    std::error_code error;
    std::filesystem::recursive_directory_iterator found(QFile::encodeName(staged).toStdString(), error);
    for (const std::filesystem::recursive_directory_iterator end; !error && found != end; found.increment(error)) {
        if (!found->is_directory(error) && !error)
            files.append(QFile::decodeName(found->path().c_str()));
    }
    if (error)
        throw notWritten(staged, error.value());
    for (const QString &from : files) {
        const QString to = callDir + from.sliced(staged.size());
        if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
            throw notWritten(to, errno);
    }
    syncFolder(technicalFolder(callDir));
    syncFolder(callDir);
    return true;
}

void discardStaged(const QString &callDir)
{
    const QStringList folders =
        QDir(callDir).entryList({stagedPrefix + u'*'}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QString &folder : folders)
        QDir(callDir + u'/' + folder).removeRecursively();
}

} // namespace engine
