#pragma once

#include "app/StartRecord.h"
#include "app/WaitingQueue.h"
#include "engine/EngineReplies.h"

#include <QJsonObject>
#include <QString>

#include <memory>
#include <optional>

namespace tuppi {

/// What is known of the engine's work and what waits for it. Main thread only.
struct JobsState
{
    WaitingQueue waiting;
    HistoryPointer history = std::make_shared<const History>();  ///< the last usable reply, never null
    std::optional<QJsonObject> latestJob;
    QString library;              ///< the transcripts folder, empty when unknown
    bool loaded = false;          ///< a usable history has arrived; never cleared
    QString engineInstaller;      ///< sets the engine up before its first command; empty: nothing does
    bool settingUp = false;       ///< that installer is at work
    bool engineBroken = false;    ///< the engine could not be found at the last poll
    bool polling = false;         ///< a history or status query of the current poll is in flight
    unsigned polls = 0;           ///< begun so far; what an earlier one than the last brings is no longer news
    unsigned pollTick = 0;        ///< timer ticks so far
    bool starting = false;        ///< a start is in flight
    WaitingEntry startingEntry;   ///< the file of that start
    qint64 startedAt = 0;         ///< when it began, seconds since 1970
    HistoryPointer beforeStart;   ///< the last usable history before it, null when there was none
    int startGeneration = 0;      ///< starts completed so far
    bool startUnlisted = false;   ///< the engine has taken a file since the last usable history was asked for
    std::optional<StartRecord> interruptedStart;  ///< of an earlier run, its fate not yet known

    /// A file is between the queue and the engine's history, of this run or of an interrupted one.
    bool isHandingOver() const { return starting || interruptedStart; }
};

} // namespace tuppi
