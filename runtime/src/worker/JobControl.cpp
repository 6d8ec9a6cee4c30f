#include "worker/JobControl.h"

namespace engine {

namespace {

constexpr qint64 checkEveryMs = 200;
constexpr qint64 announceEveryMs = 500;

// A correction keeps the store while it writes to the library's disk, which may be slow. Each try waits as long as
// any command would.
constexpr int mostTries = 8;

void patiently(const std::function<void()> &write)
{
    for (int tries = 1;; ++tries) {
        try {
            write();
            return;
        } catch (const StoreBusy &) {
            if (tries == mostTries)
                throw;
        }
    }
}

} // namespace

JobControl::JobControl(Database &database, const Job &job)
    : m_database(database)
    , m_job(job)
{
    m_sinceCheck.start();
    m_sinceAnnounced.start();
}

Job JobControl::wanted()
{
    std::optional<Job> job = jobBySeq(m_database, m_job.seq);
    if (!job || !job->unfinished() || job->paused)
        throw JobDropped();
    return *std::move(job);
}

void JobControl::check()
{
    if (m_unannounced && m_sinceAnnounced.hasExpired(announceEveryMs))
        announce();
    if (!m_sinceCheck.hasExpired(checkEveryMs))
        return;
    m_sinceCheck.restart();
    wanted();
}

void JobControl::write(const std::function<void(Job &)> &change, const std::function<void()> &within)
{
    Transaction transaction(m_database);
    Job job = wanted();
    if (job.status == Status::queued)
        job.status = m_job.status; // cancelled and begun again between two looks: it never left our hands
    if (within)
        within();
    change(job);
    updateJob(m_database, job);
    transaction.commit();
    m_job = job;
}

void JobControl::note(const std::function<void()> &within)
{
    patiently([&] { noteOnce(within); });
}

void JobControl::noteOnce(const std::function<void()> &within)
{
    Transaction transaction(m_database);
    wanted();
    within();
    transaction.commit();
}

void JobControl::change(const std::function<void(Job &)> &change, const std::function<void()> &within)
{
    patiently([&] { write(change, within); });
    announce();
}

void JobControl::progress(const std::function<void(Job &)> &change, const std::function<void()> &within)
{
    if (within) {
        patiently([&] { write(change, within); });
    } else {
        try {
            write(change, within);
        } catch (const StoreBusy &) {
            return; // the next one tells
        }
    }
    m_unannounced = true;
    if (m_sinceAnnounced.hasExpired(announceEveryMs))
        announce();
}

void JobControl::announce()
{
    announceChange(m_database.paths());
    m_sinceAnnounced.restart();
    m_unannounced = false;
}

} // namespace engine
