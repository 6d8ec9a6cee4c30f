#include "commands/Command.h"

#include "core/Failure.h"
#include "store/Jobs.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

std::vector<Job> chosenJobs(Database &database, const Arguments &arguments, bool hidden)
{
    std::vector<Job> jobs;
    for (const QString &id : arguments.words) {
        const Job job = requireJob(database, id);
        if (hidden && job.unfinished())
            throw Failure(u"“"_s + job.title + u"” is still being worked on. Cancel it first."_s);
        if (job.hidden != hidden)
            jobs.push_back(job);
    }
    return jobs;
}

bool hideChosen(Database &database, const Arguments &arguments, bool hidden)
{
    std::vector<Job> jobs = chosenJobs(database, arguments, hidden);
    for (Job &job : jobs) {
        job.hidden = hidden;
        updateJob(database, job);
    }
    return !jobs.empty();
}

} // namespace

int hide(const Arguments &arguments)
{
    if (arguments.has(u"--all") != arguments.words.isEmpty())
        throw usageFailure(u"Say which transcriptions, or --all. Usage: call hide ID… [--undo]"_s);
    const bool hidden = !arguments.has(u"--undo");
    Database database(Paths::ofThisUser());
    Transaction transaction(database);
    const bool changed =
        arguments.has(u"--all") ? hideAll(database, hidden) : hideChosen(database, arguments, hidden);
    transaction.commit();
    if (changed)
        announceChange(database.paths());
    return 0;
}

} // namespace engine::commands
