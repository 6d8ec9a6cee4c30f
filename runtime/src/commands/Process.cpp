#include "commands/Command.h"

#include "core/Failure.h"
#include "core/WorkerStart.h"
#include "intake/CallDir.h"
#include "models/CustomModels.h"
#include "store/Jobs.h"
#include "store/Settings.h"

#include <QRegularExpression>

#include <chrono>
#include <cstdio>
#include <sys/wait.h>
#include <thread>
#include <tuple>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

QString engineChoice(const Arguments &arguments)
{
    static const QStringList known{u"auto"_s, u"parakeet"_s, u"whisper"_s, u"whisper-large"_s};
    const QString choice = arguments.value(u"--engine", u"auto"_s);
    const bool custom = choice.startsWith(customPrefix) && choice.size() > customPrefix.size();
    if (!custom && !known.contains(choice))
        throw usageFailure(u"“"_s + choice +
                           u"” is not a speech model. Choose auto, parakeet, whisper, "
                           "whisper-large or custom:ID."_s);
    if (custom)
        customModelById(Paths::ofThisUser(), choice.mid(customPrefix.size()));
    return choice;
}

QString languageChoice(const Arguments &arguments)
{
    static const QRegularExpression form(u"^(auto|[A-Za-z]{2,3}([-_][A-Za-z0-9]{2,8})*)$"_s);
    const QString choice = arguments.value(u"--language", u"auto"_s);
    if (!form.match(choice).hasMatch())
        throw usageFailure(u"“"_s + choice + u"” is not a language code. Give one such as en, or auto."_s);
    return choice;
}

Job jobFor(const Recording &recording, const Arguments &arguments)
{
    if (arguments.has(u"--speakers") && arguments.has(u"--no-speakers"))
        throw usageFailure(u"--speakers and --no-speakers exclude each other."_s);
    Job job;
    job.id = newJobId();
    job.status = Status::queued.toString();
    job.title = recording.title;
    job.recordedAt = contractTime(recording.modified);
    job.engineChoice = engineChoice(arguments);
    job.languageChoice = languageChoice(arguments);
    job.language = job.languageChoice;
    job.speakers = arguments.has(u"--speakers");
    job.clean = !arguments.has(u"--no-clean");
    job.analyze = !arguments.has(u"--no-analyze");
    job.createdAt = contractNow();
    return job;
}

// The recording is in its place and synced before the job is recorded: a job never lacks its recording.
void record(Database &database, const Recording &recording, Job &job)
{
    const Library library = libraryInUse(database);
    requireLibrary(library);
    NewCallDir folder(library.folder, [&](const QString &name) { return hasCallDirNamed(database, name); });
    job.audio = folder.take(recording);
    job.callDir = folder.place(callDirName(recording.modified, job.title));
    Transaction transaction(database);
    insertJob(database, job);
    transaction.commit();
    folder.keep();
    announceChange(database.paths());
}

// A worker that is our own child, where another does not work already. One that falls before it has taken a job is
// started again a few times only: nothing counts these deaths, and it would go on without end.
class OwnWorker
{
public:
    explicit OwnWorker(Database &database)
        : m_database(database)
    {
    }

    // Throws Failure when workers fall one after another.
    void keepWorking()
    {
        if (running())
            return;
        if (m_fallen >= mostFallen)
            throw Failure(u"The worker ends before it has begun. The recording waits in the list; “call doctor” tells "
                          "what is wrong."_s);
        m_before = takings();
        m_pid = startWorkerAsChild(m_database.paths());
    }

    // So that nothing of ours runs on behind the prompt; but other people's jobs are not waited for.
    void waitUnlessThereIsMore()
    {
        while (running() && !nextJob(m_database))
            std::this_thread::sleep_for(lookEvery);
    }

    static constexpr auto lookEvery = std::chrono::milliseconds(50);

private:
    static constexpr int mostFallen = 3; // in a row

    bool running()
    {
        int status = 0;
        if (m_pid > 0 && ::waitpid(m_pid, &status, WNOHANG) != 0) {
            m_pid = -1;
            m_fallen = status != 0 && takings() == m_before ? m_fallen + 1 : 0;
        }
        return m_pid > 0;
    }

    // Changes when a worker takes a job, which need not be ours.
    std::tuple<qint64, int, int> takings()
    {
        const Job next = nextJob(m_database).value_or(Job());
        return {next.seq, next.attempts, next.attemptsAt};
    }

    Database &m_database;
    pid_t m_pid = -1;
    int m_fallen = 0;
    std::tuple<qint64, int, int> m_before;
};

// Waits as long as the job is unfinished, whoever works on it, and tells a person at a terminal how far it
// is.
Job waitForEnd(Database &database, const QString &id)
{
    QString shown;
    OwnWorker worker(database);
    for (;;) {
        const std::optional<Job> job = jobById(database, id);
        if (!job || !job->unfinished() || job->paused) {
            worker.waitUnlessThereIsMore();
            return job.value_or(Job());
        }
        if (const QString now = job->status + u' ' + job->progress; now != shown) {
            shown = now;
            if (::isatty(STDERR_FILENO))
                std::fprintf(stderr, "%s\n", now.trimmed().toUtf8().constData());
        }
        worker.keepWorking();
        std::this_thread::sleep_for(OwnWorker::lookEvery);
    }
}

} // namespace

int process(const Arguments &arguments)
{
    const Recording recording = openRecording(arguments.words.first());
    Job job = jobFor(recording, arguments);
    requireWorker();
    Database database(Paths::ofThisUser());
    record(database, recording, job);
    if (arguments.has(u"--background")) {
        startWorkerNowOrWithResume(database.paths());
        printLine(job.callDir);
        return 0;
    }
    const Job ended = waitForEnd(database, job.id);
    if (ended.status == Status::failed)
        throw Failure(ended.error);
    if (ended.status != Status::ready)
        throw Failure(u"“"_s + job.title + u"” was stopped before it was done."_s);
    printLine(ended.callDir);
    return 0;
}

} // namespace engine::commands
