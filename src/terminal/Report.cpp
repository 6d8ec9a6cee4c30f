#include "terminal/Report.h"

#include "engine/Stages.h"
#include "list/Describe.h"
#include "list/Rows.h"
#include "settings/L.h"

#include <QSet>

#include <algorithm>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// The engine has taken the file, but which job is its own is not known yet.
bool awaitsJob(const FollowedFile &file)
{
    return file.handedOver && file.jobId.isEmpty() && !file.refused;
}

bool hasEnded(const FollowedFile &file)
{
    return file.refused || (!file.jobId.isEmpty() && !IsActiveStage(file.stage) && file.stage != "paused"_L1);
}

} // namespace

FollowedFile &Report::fileFor(const QString &path)
{
    const auto known = std::find_if(m_files.begin(), m_files.end(), [&](const FollowedFile &file) {
        return file.path == path && !hasEnded(file) && file.jobId.isEmpty();
    });
    if (known != m_files.end())
        return *known;
    FollowedFile file;
    file.path = path;
    file.title = TitleOfFile(path);
    m_files.append(file);
    return m_files.last();
}

bool Report::claim(const JobList &jobs, qsizetype index, bool anyTitle)
{
    const QString title = jobs.titleAt(index);
    const auto file = std::find_if(m_files.begin(), m_files.end(), [&](const FollowedFile &candidate) {
        return awaitsJob(candidate) && (anyTitle || IsTitleOfFile(title, candidate.path));
    });
    if (file == m_files.end())
        return false;
    file->jobId = jobs.idAt(index);
    return true;
}

/// What is under way when the run begins holds the queue up, so it is followed as well. Which jobs a start
/// before the first history has brought about, only their titles can tell, once they are sure to be listed.
void Report::claimFirstJobs(const JobsState &jobs)
{
    const JobList &listed = jobs.history->listed;
    const QString started = jobs.starting || jobs.startUnlisted ? WaitingPath(jobs.startingEntry) : QString();
    for (qsizetype index = 0; index < listed.size(); ++index) {
        const bool mayBeOurs = !started.isEmpty() && IsTitleOfFile(listed.titleAt(index), started);
        if (mayBeOurs || isFollowed(listed.idAt(index)) || claim(listed, index, false)
            || !IsActiveStage(listed.statusAt(index)))
            continue;
        FollowedFile file;
        file.jobId = listed.idAt(index);
        file.title = listed.titleAt(index);
        m_files.append(file);
    }
}

bool Report::isFollowed(const QString &id) const
{
    return std::any_of(m_files.begin(), m_files.end(), [&](const FollowedFile &file) { return file.jobId == id; });
}

bool Report::lacksJob() const
{
    return std::any_of(m_files.begin(), m_files.end(), awaitsJob);
}

/// Another process's job may stand before ours: no file takes a job without its title while others are unasked, nor
/// from a history that may be older than its own job.
void Report::claimNewJobs(const History &history, bool isCurrent)
{
    const QSet<QString> known(m_knownJobs.begin(), m_knownJobs.end());
    QList<qsizetype> unclaimed;
    for (qsizetype index = 0; index < history.entries.size(); ++index) {
        const QString id = history.entries.idAt(index);
        if (!known.contains(id) && !isFollowed(id) && !claim(history.entries, index, false))
            unclaimed.append(index);
    }
    if (!isCurrent)
        return;
    for (const qsizetype index : unclaimed)
        claim(history.entries, index, true);
}

void Report::claimJobs(const JobsState &jobs)
{
    if (m_loaded) {
        claimNewJobs(*jobs.history, !jobs.startUnlisted);
    } else {
        claimFirstJobs(jobs);
        // A start that a history may be older than, an interrupted one too, still brings a job about.
        m_loaded = !jobs.isHandingOver() && !jobs.startUnlisted;
        m_knownJobs = JobIds(*jobs.history);
    }
    // The engine may list the job of a start before it has answered it; that job is still to be claimed then.
    if (!jobs.starting && !lacksJob())
        m_knownJobs = JobIds(*jobs.history);
}

bool Report::report(FollowedFile &file, const QJsonObject &row, const JobsState &jobs, const QJsonArray &customModels,
                    QList<ReportLine> &lines)
{
    const QString text = Describe(row, jobs.latestJob, customModels).text;
    const QString stage = row.value("status"_L1).toString();
    file.callDir = row.value("call_dir"_L1).toString();
    if (text == file.text)
        return false;
    const QString identity = file.path + u'|' + file.jobId;
    lines.append({file.title, text, stage == file.stage && m_lastReported == identity});
    m_lastReported = identity;
    file.text = text;
    file.stage = stage;
    return true;
}

QList<ReportLine> Report::update(const JobsState &jobs, const QJsonArray &customModels)
{
    QList<ReportLine> lines;
    if (jobs.loaded)
        claimJobs(jobs);
    const Rows rows = BuildRows(jobs).rows;
    for (qsizetype index = 0; index < rows.locals(); ++index) {
        const QJsonObject row = rows.at(index);
        if (row.value("status"_L1) == "waiting"_L1)
            report(fileFor(row.value("waitPath"_L1).toString()), row, jobs, customModels, lines);
        else if (jobs.starting) // an interrupted one is followed when it waits again
            report(fileFor(WaitingPath(jobs.startingEntry)), row, jobs, customModels, lines);
    }
    for (FollowedFile &file : m_files) {
        const qsizetype index = file.jobId.isEmpty() ? -1 : jobs.history->entries.indexOfId(file.jobId);
        if (index >= 0) // also where it is hidden from the list
            report(file, jobs.history->entries.at(index), jobs, customModels, lines);
    }
    return lines;
}

void Report::startFinished(const QString &path, bool taken)
{
    FollowedFile &file = fileFor(path);
    file.handedOver = taken;
    file.refused = !taken;
}

QList<ReportLine> Report::giveUpUnlisted(const History &history)
{
    QList<ReportLine> lines;
    for (FollowedFile &file : m_files) {
        const bool isLost = file.jobId.isEmpty() ? file.handedOver : history.entries.indexOfId(file.jobId) < 0;
        if (hasEnded(file) || !isLost)
            continue;
        file.refused = true;
        lines.append({file.title, file.jobId.isEmpty() ? L(u"The engine took the file but lists no job for it."_s)
                                                       : L(u"The engine no longer lists its job."_s)});
    }
    return lines;
}

bool Report::isFinished(const JobsState &jobs) const
{
    return jobs.loaded && jobs.waiting.isEmpty() && !jobs.isHandingOver()
        && std::all_of(m_files.begin(), m_files.end(), hasEnded);
}

bool Report::allReady() const
{
    return std::all_of(m_files.begin(), m_files.end(), [](const FollowedFile &file) { return file.stage == "ready"_L1; });
}

} // namespace tuppi
