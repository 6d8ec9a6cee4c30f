#include "commands/Command.h"

#include "core/WorkerLock.h"
#include "core/WorkerStart.h"
#include "correct/Correction.h"
#include "correct/MovedFolders.h"
#include "store/Jobs.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

[[noreturn]] void refuse(const Job &job, const QString &why)
{
    throw Failure(u"“"_s + job.title + u"” "_s + why);
}

void requireUnfinished(const Job &job)
{
    if (job.status == Status::ready)
        refuse(job, u"is already transcribed."_s);
    if (job.status == Status::failed)
        refuse(job, u"has failed; it can be tried again."_s);
    if (job.status == Status::cancelled)
        refuse(job, u"was cancelled; it can be started again."_s);
}

} // namespace

int resume(const Arguments &)
{
    const Paths paths = Paths::ofThisUser();
    if (!QFileInfo::exists(paths.database))
        return 0;
    Database database(paths);
    finishCorrections(database);
    findMovedFolders(database);
    if (nextJob(database))
        startWorker(paths);
    return 0;
}

int pause(const Arguments &arguments)
{
    Database database(Paths::ofThisUser());
    changeJob(database, arguments.words.first(), [](Job &job) {
        requireUnfinished(job);
        job.paused = true;
    });
    return 0;
}

int resumeOne(const Arguments &arguments)
{
    requireWorker();
    Database database(Paths::ofThisUser());
    changeJob(database, arguments.words.first(), [](Job &job) {
        requireUnfinished(job);
        job.paused = false;
    });
    startWorkerNowOrWithResume(database.paths());
    return 0;
}

int cancel(const Arguments &arguments)
{
    Database database(Paths::ofThisUser());
    changeJob(database, arguments.words.first(), [](Job &job) {
        if (job.status != Status::cancelled)
            requireUnfinished(job);
        job.status = Status::cancelled.toString();
        job.paused = false;
    });
    return 0;
}

int retry(const Arguments &arguments)
{
    requireWorker();
    Database database(Paths::ofThisUser());
    changeJob(database, arguments.words.first(), [](Job &job) {
        if (job.status == Status::ready)
            refuse(job, u"is already transcribed."_s);
        if (!job.unfinished())
            job.status = Status::queued.toString();
        job.paused = false;
        job.error.clear();
        job.lost = false;
        job.attempts = 0;
        job.completedAt.clear();
    });
    startWorkerNowOrWithResume(database.paths());
    return 0;
}

} // namespace engine::commands
