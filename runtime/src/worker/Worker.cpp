#include "worker/Worker.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "store/Segments.h"
#include "worker/JobRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <new>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Times that a worker may take the job without another segment being kept, in whatever stage, before it is given up. People who pull the plug again
// and again must not lose a job; one that can never be done must not run for ever.
constexpr int mostAttempts = 25;
constexpr qsizetype reserveBytes = 256 * 1024;

// Kept so that a full disk still has room for writing down that it is full.
void keepReserve(const Paths &paths)
{
    if (QFile::exists(paths.reserve))
        return;
    try {
        writeFile(paths.reserve, QByteArray(reserveBytes, '\0'));
    } catch (const Failure &) {
        // Then there is none; the failure it is for may never come.
    }
}

} // namespace

Worker::Worker(const Paths &paths)
    : m_paths(paths)
    , m_database(paths)
    , m_lock(paths)
{
}

int Worker::run()
{
    do {
        if (!m_lock.takeSoon())
            return 0;
        m_lock.signOwner();
        clearWork(); // what a killed worker has left
        while (const std::optional<Job> job = takeJob()) {
            work(*job);
            clearWork(); // what a killed recogniser has left
        }
        m_lock.release();
        // Whoever added a job while we still held the lock has relied on us.
    } while (nextJob(m_database));
    return 0;
}

std::optional<Job> Worker::takeJob()
{
    for (;;) {
        keepReserve(m_paths);
        Transaction transaction(m_database);
        std::optional<Job> job = nextJob(m_database);
        if (!job)
            return std::nullopt;
        const int kept = keptCount(m_database, job->seq);
        job->attempts = job->attemptsAt == kept ? job->attempts + 1 : 1;
        job->attemptsAt = kept;
        updateJob(m_database, *job);
        noteTaken(m_database, job->seq);
        transaction.commit();
        if (job->attempts <= mostAttempts)
            return job;
        fail(*job, u"The work on this recording was cut off again and again (%1 times)."_s.arg(mostAttempts));
    }
}

void Worker::work(const Job &job)
{
    try {
        JobRun(m_database, m_lock, job, [this](const Job &wanted, const QString &language) -> Recogniser & {
            return recogniserFor(wanted, language);
        }).run();
    } catch (const JobDropped &) {
        putDown(job);
    } catch (const StoreBusy &) {
        // Nothing is wrong with the job: it keeps its stage and is taken up again.
    } catch (const Failure &failure) {
        fail(job, failure.sentence());
    } catch (const std::bad_alloc &) {
        fail(job, u"There is not enough memory to transcribe this recording."_s);
    }
}

void Worker::clearWork()
{
    QDir(m_paths.work).removeRecursively();
}

// Being paused or cancelled is no death.
void Worker::putDown(const Job &job)
{
    Transaction transaction(m_database);
    if (std::optional<Job> current = jobBySeq(m_database, job.seq)) {
        current->attempts = 0;
        updateJob(m_database, *current);
    }
    transaction.commit();
}

void Worker::fail(const Job &job, const QString &sentence)
{
    const auto write = [&] {
        changeJob(m_database, job.id, [&](Job &failed) {
            if (!failed.unfinished())
                return; // cancelled in the last moment
            failed.status = Status::failed.toString();
            failed.paused = false;
            failed.error = sentence;
            failed.lost = !QFileInfo::exists(failed.callDir);
            failed.completedAt = contractNow();
        });
    };
    try {
        write();
    } catch (const Failure &) {
        QFile::remove(m_paths.reserve);
        write();
    }
}

Recogniser &Worker::recogniserFor(const Job &job, const QString &language)
{
    // Choosing is cheap, and models come and go: under a name that is known there may be another one.
    std::unique_ptr<Recogniser> chosen = chooseRecogniser(job.engineChoice, language);
    if (!m_recogniser || !m_recogniser->staysLoaded() || chosen->name() != m_recogniser->name())
        m_recogniser = std::move(chosen);
    return *m_recogniser;
}

} // namespace engine
