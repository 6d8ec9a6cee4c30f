#pragma once

#include "engine/JobList.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace tuppi {

/// What is remembered from one history reply to the next, so that every end of a job is announced once.
struct TransitionMemory
{
    QDateTime launchedAt;         ///< when the application had started
    std::optional<JobList> last;  ///< nothing before the first reply
    /// Ids of jobs that were ready once and no longer are. Whatever is or was ready has been announced, or passed over
    /// as old.
    QSet<QString> onceReady;
};

/// One job that changed, or that the person is told of.
struct Transition
{
    enum class Announcement { None, Ready, Failed };

    QString id;
    QString title;          ///< of what is announced; empty otherwise
    QString before;         ///< its last status, "(new)" for a job that was not there
    QString status;
    bool changed = false;   ///< worth a line in the diagnostic log
    Announcement announcement = Announcement::None;
};

/// Compares the history's entries with what is remembered, in their order, and brings the memory up to date. What the two
/// replies share costs nothing.
QList<Transition> FindTransitions(TransitionMemory &memory, const JobList &entries);

} // namespace tuppi
