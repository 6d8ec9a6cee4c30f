#pragma once

#include "app/JobsState.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tuppi {

/// One file that this run follows, from the queue to the end of its job.
struct FollowedFile
{
    QString path;      ///< empty for a job that was under way before this run
    QString title;
    QString jobId;     ///< empty until the engine lists the job
    QString text;      ///< the status text last reported
    QString stage;     ///< the status it belongs to
    QString callDir;
    bool handedOver = false;  ///< the engine has taken the file
    bool refused = false;     ///< the engine has not, or lists no job for it, or no longer
};

/// A status text that changed.
struct ReportLine
{
    QString title;
    QString text;
    bool sameStage = false;  ///< only the amount of progress differs from the line before it
};

/// Follows the files of one run without a window: which job is whose, what changed, when all is done. Plain
/// data and rules; it prints nothing.
class Report
{
public:
    /// Compares the state with what was reported and gives the lines that are new. Jobs that appear are
    /// matched with the files that the engine has taken, by title first.
    QList<ReportLine> update(const JobsState &jobs, const QJsonArray &customModels);

    /// The engine's answer to a start.
    void startFinished(const QString &path, bool taken);

    /// Called after a poll that is no older than the last start: a file taken by then has its job listed, or
    /// never will; a job that is listed no more has no end to wait for. Gives those given up, with the reason.
    QList<ReportLine> giveUpUnlisted(const History &history);

    /// Nothing waits, nothing is in flight and every followed file has come to its end.
    bool isFinished(const JobsState &jobs) const;

    /// Every followed file ended as a transcript.
    bool allReady() const;

    const QList<FollowedFile> &files() const { return m_files; }

private:
    FollowedFile &fileFor(const QString &path);
    void claimJobs(const JobsState &jobs);
    void claimFirstJobs(const JobsState &jobs);
    void claimNewJobs(const History &history, bool isCurrent);
    bool isFollowed(const QString &id) const;
    bool lacksJob() const;
    bool claim(const JobList &jobs, qsizetype index, bool anyTitle);
    bool report(FollowedFile &file, const QJsonObject &row, const JobsState &jobs, const QJsonArray &customModels,
                QList<ReportLine> &lines);

    QList<FollowedFile> m_files;
    QStringList m_knownJobs;
    bool m_loaded = false;  ///< the jobs from before the first start of this run are known
    QString m_lastReported;
};

} // namespace tuppi
