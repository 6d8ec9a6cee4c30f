#include "correct/Correction.h"

#include "core/Failure.h"
#include "correct/FilesLock.h"
#include "correct/HandEdits.h"
#include "output/CallDirWriter.h"
#include "store/Jobs.h"
#include "store/Segments.h"
#include "store/Transcripts.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

Job requireReady(Database &database, const QString &id)
{
    Job job = requireJob(database, id);
    if (job.status != Status::ready)
        throw Failure(u"“"_s + job.title + u"” is not transcribed yet."_s);
    return job;
}

// What a store from before transcripts were kept has of one, which is its segments.
Transcript firstTranscript(Database &database, const Job &job)
{
    const std::vector<Segment> segments = segmentsOf(database, job.seq);
    Transcript transcript;
    transcript.lines = linesFrom(segments);
    transcript.clean = job.clean ? paragraphs(cleanSentences(segments, job.language)) : plainText(segments);
    if (job.analyze)
        transcript.summary = extractSummary(cleanSentences(segments, job.language), job.language);
    return transcript;
}

// Files that are as they should be already are left alone.
CallDirFiles thoseThatDiffer(const QString &callDir, CallDirFiles files)
{
    std::erase_if(files, [&](const auto &file) {
        QFile there(callDir + u'/' + file.first);
        return there.open(QIODevice::ReadOnly) && there.readAll() == file.second;
    });
    return files;
}

void publish(Database &database, const Job &job, int revision)
{
    publishFiles(job.callDir, revision);
    // Only now, and before the hidden folder goes: while it is there, what is missing can be taken from it.
    noteWritten(database, job.seq, revision);
    discardStaged(job.callDir);
}

void finishOne(Database &database, const Job &job)
{
    // Each look at the list comes here, for as long as the folder is away.
    if (!QFileInfo(job.callDir).isDir())
        return;
    const Transcript transcript = *keptTranscript(database, job.seq);
    if (!publishFiles(job.callDir, transcript.revision))
        stageFiles(job.callDir, transcript.revision,
                   thoseThatDiffer(job.callDir, callDirFiles(job, transcript)));
    publish(database, job, transcript.revision);
}

// Where the files of the job that is to be corrected stay behind, they would be taken for edits by hand, and the last
// correction be lost with the next one.
void finishAll(Database &database, const QString &toBeCorrected = {})
{
    for (const qint64 seq : unwrittenJobs(database)) {
        const Job job = *jobBySeq(database, seq);
        try {
            finishOne(database, job);
        } catch (const Failure &failure) {
            if (job.id == toBeCorrected)
                throw Failure(u"The last correction is not in the files yet, and there can be no other before: "_s +
                              failure.sentence());
            // Its folder cannot be written. It is tried again with the next command.
        }
    }
}

} // namespace

void correct(Database &database, const QString &id, const std::function<void(Correction &)> &change)
{
    const FilesLock lock(database.paths(), FilesLock::Patience::Wait);
    finishAll(database, id);
    Transaction transaction(database);
    Correction correction{requireReady(database, id), {}};
    const Job &job = correction.job;
    const Job before = job;
    const std::optional<Transcript> kept = keptTranscript(database, job.seq);
    correction.transcript = kept ? *kept : firstTranscript(database, job);
    const HandEdits byHand(before, correction.transcript);
    correction.transcript.clean = byHand.cleanText();
    const std::vector<Line> lines = correction.transcript.lines;
    change(correction);
    Transcript &transcript = correction.transcript;
    if (transcript.lines == lines && job.title == before.title)
        return;
    transcript.clean = correction.carriedOver(transcript.clean);
    ++transcript.revision;
    CallDirFiles files = callDirFiles(job, transcript);
    byHand.keepIn(files, correction.carriedOver);
    stageFiles(job.callDir, transcript.revision, thoseThatDiffer(job.callDir, std::move(files)));
    try {
        keepTranscript(database, job.seq, transcript, kept ? kept->lines : std::vector<Line>());
        updateJob(database, job);
        transaction.commit();
    } catch (...) {
        discardStaged(job.callDir);
        throw;
    }
    try {
        publish(database, job, transcript.revision);
    } catch (const Failure &) {
        // The change is kept. Its files follow with the next command.
    }
    if (historyEntry(job) != historyEntry(before))
        announceChange(database.paths());
}

QString currentCleanText(Database &database, const QString &id)
{
    finishCorrections(database);
    const Job job = requireReady(database, id);
    const std::optional<Transcript> kept = keptTranscript(database, job.seq);
    return HandEdits(job, kept ? *kept : firstTranscript(database, job)).cleanText();
}

void finishCorrections(Database &database)
{
    try {
        if (unwrittenJobs(database).empty())
            return;
        const FilesLock lock(database.paths(), FilesLock::Patience::JustTry);
        if (lock.held())
            finishAll(database);
    } catch (const Failure &) {
        // The store, or its folder, can only be read.
    }
}

} // namespace engine
