#include "app/AppDelegate.h"

#include "app/NextTurn.h"
#include "app/Scheduler.h"
#include "engine/DebugLog.h"
#include "engine/EngineCommands.h"
#include "settings/Fill.h"
#include "settings/L.h"

#include <QFileInfo>

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::restoreWaiting()
{
    m_queue.owned = m_queue.ownerLock.tryLock() != FileLock::Result::Elsewhere;
    if (!m_queue.owned)
        return;
    m_queue.defaults.reread(); // as the last owner left it
    const WaitingQueue own = std::exchange(m_jobs.waiting, RestoredQueue(m_queue.defaults.value(u"waitingQueue"_s)));
    AddWaiting(m_jobs.waiting, own);
    m_jobs.interruptedStart = RestoredStart(m_queue.defaults.value(u"startInFlight"_s));
    if (!m_jobs.interruptedStart)
        m_queue.startLock.tryLock();
}

void AppDelegate::takeOverWaiting()
{
    // Only where the files stay in sight: a run in a terminal keeps to its own. Not during a start, which the stored
    // record of an interrupted one would take the place of.
    if (m_queue.owned || !m_ui.window || m_jobs.starting)
        return;
    if (m_queue.ownerLock.tryLock() != FileLock::Result::Held)
        return;
    restoreWaiting();
    saveWaiting();
    refresh();
}

void AppDelegate::enqueue(const QStringList &paths, const StartChoices &choices)
{
    AddWaiting(m_jobs.waiting, paths, choices);
    saveWaiting();
    if (!m_queue.owned && !std::exchange(m_queue.toldNotOwned, true))
        flash(L(u"Another Tuppi is running. The list here is kept only until the app quits."_s));
    const auto show = [this] {
        refresh();
        startNextIfIdle();
    };
    constexpr qsizetype many = 1000; // taking them takes a good part of a frame, and so does showing them
    if (paths.size() < many)
        show();
    else
        InNextTurn(this, show);
}

/// Writes the queue and the start in flight in one replacement of the file, so that a file is always in
/// exactly one of the two.
void AppDelegate::saveWaiting()
{
    if (!m_queue.owned)
        return;
    std::function<QVariant()> start = [] { return QVariant(); };
    if (m_jobs.interruptedStart) {
        start = [record = *m_jobs.interruptedStart] { return StoredStart(record); };
    } else if (m_jobs.starting) {
        start = [entry = m_jobs.startingEntry, at = m_jobs.startedAt, before = m_jobs.beforeStart] {
            return StoredStart({entry, before ? std::optional(JobIds(*before)) : std::nullopt, at});
        };
    }
    const auto values = [waiting = m_jobs.waiting, start]() -> QVariantMap {
        return {{u"waitingQueue"_s, StoredQueue(waiting)}, {u"startInFlight"_s, start()}};
    };
    m_queue.stored = m_queue.defaults.write(values, this, [this](bool stored) {
        if (stored)
            return;
        DebugLog(u"the waiting queue could not be written to %@"_s, {m_queue.defaults.path()});
        flash(L(u"The waiting list could not be saved. It is kept until the app quits."_s));
    });
}

void AppDelegate::settleInterruptedStart(bool commandEnded)
{
    if (!m_jobs.interruptedStart)
        return;
    const StartFate fate = FateOfStart(*m_jobs.interruptedStart, *m_jobs.history, commandEnded);
    if (fate == StartFate::Unknown)
        return;
    if (fate == StartFate::NotTaken)
        TakeBack(m_jobs.waiting, m_jobs.interruptedStart->entry);
    m_jobs.interruptedStart.reset();
    m_queue.startLock.tryLock();
    saveWaiting();
}

void AppDelegate::removeWaiting(const QString &rowKey)
{
    const QString path = rowWithKey(rowKey).value("waitPath"_L1).toString();
    if (!path.isEmpty())
        RemoveWaitingPath(m_jobs.waiting, path);
    saveWaiting();
    refresh();
}

void AppDelegate::startNextIfIdle()
{
    if (!MayStartNext(m_jobs))
        return;
    m_jobs.startingEntry = m_jobs.waiting.takeFirst();
    m_jobs.startedAt = QDateTime::currentSecsSinceEpoch();
    m_jobs.starting = true;
    m_jobs.beforeStart = m_jobs.loaded ? m_jobs.history : nullptr;
    if (m_queue.owned)
        m_queue.startLock.tryLock(); // a command of an earlier run may have held it until now
    saveWaiting();
    refresh();
    const auto written = [stored = m_queue.stored] { // on the disk before the engine gets the file
        if (stored.valid())
            stored.wait();
    };
    RunCallRead(
        command::process(m_jobs.startingEntry), this, {0, m_queue.startLock.descriptor(), {}, written}, Decoded,
        [this](const EngineReply &reply) { startAnswered(reply); });
}

void AppDelegate::startAnswered(const EngineReply &reply)
{
    const QString path = WaitingPath(m_jobs.startingEntry);
    m_jobs.starting = false;
    m_jobs.beforeStart.reset();
    ++m_jobs.startGeneration;
    m_jobs.startUnlisted = reply.status == 0;
    saveWaiting();
    Q_EMIT startFinished(path, reply.status == 0);
    refresh();
    reportFailure(reply.status, reply.err, Fill(L(u"Could not start “%@”"_s), {QFileInfo(path).fileName()}));
    pollAnew();
}

bool AppDelegate::busyExcept(const QString &id) const
{
    return BusyExcept(m_jobs, id);
}

} // namespace tuppi
