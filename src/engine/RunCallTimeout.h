#pragma once

#include "engine/HandOver.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace tuppi {

/// What one engine command left behind, as bytes; read on the thread that ran the command.
struct RawReply
{
    int status = -1;  ///< exit status, the signal's number after a signal, -1 when nothing could be launched
    QByteArray out;   ///< standard output, as far as it was written
    QByteArray err;   ///< standard error; the launch error's description when nothing could be launched
};

/// The same reply as texts, delivered on the main thread. A stream that is not valid UTF-8 is empty.
struct EngineReply
{
    int status = -1;
    QString out;
    QString err;
};

using Completion = std::function<void(const EngineReply &)>;

/// The environment as it is now, "NAME=value" each. For the thread that changes it, the main one.
QList<QByteArray> CurrentEnvironment();

/// How one command is run, beside its arguments.
struct RunOptions
{
    double timeoutSeconds = 0;  ///< 0 or less: no limit
    /// A descriptor that the child keeps open while it lives, -1 for none. The caller owns it and keeps it
    /// open until the call returns.
    int keepOpen = -1;
    /// Gets standard output piece by piece, on the thread that runs the command, in place of RawReply::out.
    std::function<void(QByteArrayView)> out = {};
    /// Waited for, on that thread, before the command is run.
    std::function<void()> before = {};
    /// That of the moment when the options are made, on the caller's thread: the one that runs the command must not
    /// read it while the main thread changes it.
    QList<QByteArray> environment = CurrentEnvironment();
};

/// The engine's folder under the user's home, and its entry file there; computed afresh each time.
QString EngineFolder();
QString EnginePath();

/// Decodes a stream of the engine: valid UTF-8, or an empty text.
QString DecodeStream(const QByteArray &bytes);
EngineReply Decoded(const RawReply &raw);

/// Runs `interpreter` with `arguments` and blocks until it has ended and both its streams are at their end
/// (or, once the limit has passed, until it has ended). At the limit SIGTERM goes to the child and to what
/// it started in its process group; nothing else is done to it.
RawReply RunAndWait(const QString &interpreter, const QStringList &arguments, const RunOptions &options);

namespace detail {
RawReply runEngine(const QStringList &arguments, const RunOptions &options);
}

/// Calls `work` on a thread of its own, and `then` with what it returned on `context`'s thread. A context that is gone
/// by then is not called; what works still works to its end. Returns at once.
template<typename Work, typename Then>
void RunAside(Work work, QObject *context, Then then)
{
    auto result = std::make_shared<std::invoke_result_t<Work>>();
    // What tells of the end, by its own. It is made here, where `context` cannot end meanwhile, and belongs to no event
    // loop that would have to free it.
    auto end = std::make_shared<QObject>();
    const auto receive = [result, then = std::move(then)] {
        TakeOver(result.get());
        then(std::move(*result));
    };
    QObject::connect(end.get(), &QObject::destroyed, context, receive, Qt::QueuedConnection);
    const auto run = [work = std::move(work), result, end = std::move(end)] {
        *result = work();
        GiveOver(result.get());
    };
    try {
        // Never waited for: what hangs must not hold the application's exit. The thread touches nothing but what it owns.
        std::thread(run).detach();
    } catch (const std::system_error &) {
        run(); // the system has no further thread: late is better than never
    }
}

/// RunAside for `run`, which returns a RawReply, and `read`, which makes of it what `then` gets.
template<typename Run, typename Read, typename Then>
void RunRead(Run run, QObject *context, Read read, Then then)
{
    RunAside([run = std::move(run), read = std::move(read)] { return read(run()); }, context, std::move(then));
}

/// RunRead for one engine command.
template<typename Read, typename Then>
void RunCallRead(const QStringList &arguments, QObject *context, const RunOptions &options, Read read, Then then)
{
    RunRead([arguments, options] { return detail::runEngine(arguments, options); }, context, std::move(read),
            std::move(then));
}

/// Runs one engine command off the main thread and delivers its reply to `completion` (which may be empty)
/// on `context`'s thread. Returns at once. A limit of 0 or less means none.
void RunCallTimeout(const QStringList &arguments, QObject *context, Completion completion, double timeoutSeconds);

} // namespace tuppi
