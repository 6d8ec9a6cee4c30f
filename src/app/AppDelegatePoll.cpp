#include "app/AppDelegate.h"

#include "app/MainLoop.h"
#include "engine/EngineCommands.h"
#include "engine/HistoryReader.h"

#include <QFile>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::poll()
{
    if (m_jobs.polling)
        return;
    takeOverWaiting();
    m_jobs.polling = true;
    PollContext context;
    context.number = ++m_jobs.polls;
    context.generation = m_jobs.startGeneration;
    // Asked before the history is: only a history younger than the command's end can prove that there is no job.
    context.interruptedStartEnded =
        m_jobs.interruptedStart && m_queue.startLock.tryLock() != FileLock::Result::Elsewhere;
    const auto reader = std::make_shared<HistoryReader>(m_jobs.history);
    RunCallRead(
        command::history(), this,
        {command::queryTimeoutSeconds, -1, [reader](QByteArrayView bytes) { reader->take(bytes); }},
        [reader](const RawReply &raw) { return reader->finish(raw.status); },
        [this, context](const HistoryReply &reply) { historyArrived(reply, context); });
}

void AppDelegate::pollAnew()
{
    m_jobs.polling = false;
    poll();
}

void AppDelegate::historyArrived(const HistoryReply &reply, PollContext context)
{
    // A command has asked anew meanwhile: what the engine said before it must not undo what it says now.
    if (context.number != m_jobs.polls)
        return;
    m_jobs.engineBroken = IsEngineBroken(reply.status, reply.history != nullptr, QFile::exists(EnginePath()));
    RunCallRead(
        command::status(), this, {command::queryTimeoutSeconds, -1},
        [](const RawReply &raw) { return ReadObject(raw.out); },
        [this, history = reply.history, context](const std::optional<QJsonObject> &status) {
            statusArrived(status, history, context);
        });
}

void AppDelegate::statusArrived(const std::optional<QJsonObject> &status, const HistoryPointer &history,
                                PollContext context)
{
    if (context.number != m_jobs.polls)
        return;
    m_jobs.polling = false;
    if (status) {
        const QJsonValue latest = status->value("latest_job"_L1);
        m_jobs.latestJob = latest.isObject() ? std::optional(latest.toObject()) : std::nullopt;
        m_jobs.library = status->value("library"_L1).toString();
    }
    if (history) {
        m_jobs.history = history;
        m_jobs.loaded = true;
        m_jobs.startUnlisted = false; // a start that is answered has the engine asked anew
        settleInterruptedStart(context.interruptedStartEnded);
        updatePurr();
        notifyTransitions(history);
    }
    refresh();
    if (context.generation != m_jobs.startGeneration)
        return;
    startNextIfIdle();
    if (history)
        Q_EMIT polled();
}

} // namespace tuppi
