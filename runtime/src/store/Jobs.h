#pragma once

#include "store/Database.h"
#include "store/Job.h"

#include <QSet>

#include <functional>
#include <optional>
#include <vector>

namespace engine {

// Reading and writing jobs. What writes, writes the job's history entry too, and belongs inside a Transaction
// together with the reading that it rests on. All throw Failure.

// Adds the job and fills in its seq.
void insertJob(Database &database, Job &job);
void updateJob(Database &database, const Job &job);

std::optional<Job> jobById(Database &database, const QString &id);
Job requireJob(Database &database, const QString &id); // throws Failure when there is none
std::optional<Job> jobBySeq(Database &database, qint64 seq);
QSet<QString> callDirs(Database &database); // of all jobs

// Whether any of the jobs has a call dir of that name, in whatever folder: one folder may be reached by several paths.
bool hasCallDirNamed(Database &database, const QString &name);

// What "hide --all" does: marks every job that is not being worked on as hidden, or takes the mark off every job. Tells
// whether any was changed.
bool hideAll(Database &database, bool hidden);

// Those that are not done yet, the oldest first.
std::vector<Job> unfinishedJobs(Database &database);

// Those that are, the oldest first.
std::vector<Job> readyJobs(Database &database);

// The one that was added last.
std::optional<Job> newestJob(Database &database);

// The job that a worker should take next: the oldest unfinished one that is not paused.
std::optional<Job> nextJob(Database &database);

// What the worker notes of the job that it takes: of several that are in the middle, only one is worked on.
void noteTaken(Database &database, qint64 seq);

// The job that `status` tells of: the one being worked on, else the oldest unfinished, else the newest.
std::optional<Job> latestJob(Database &database);

// Every job's history entry, newest first and as of one moment, some hundreds at a time, joined by ",\n". A
// job that has ended and whose call dir was thrown away since is left out for as long as that is so; where
// the whole library is away, as on a disk that was pulled out, its jobs are listed.
void forEachEntries(Database &database, const std::function<void(const QByteArray &)> &take);

// Reads the job, lets `change` alter it and writes it, in one transaction; then tells the watchers.
// Throws Failure when there is no such job, and whatever `change` throws, with nothing written.
Job changeJob(Database &database, const QString &id, const std::function<void(Job &)> &change);

// Tells watchers of the engine's folder that a query would now answer differently. Best effort.
void announceChange(const Paths &paths);

} // namespace engine
