#include "Samples.h"

#include "app/AppDelegate.h"
#include "support/ScriptedEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

constexpr double frame = 16; // milliseconds

qint64 threadNanoseconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

/// Asks the event loop for its turn again and again and keeps the longest time that it took to get it: by the
/// clock, which on a busy machine holds other programs' turns too, and in processor time of the main thread,
/// which lacks what it waited for the disk.
class Probe
{
public:
    Probe()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { turn(); });
        restart();
        m_timer.start(0);
    }
    void restart()
    {
        m_clock.start();
        m_processor = threadNanoseconds();
        m_longestClock = m_longestProcessor = 0;
    }
    void turn()
    {
        const qint64 now = threadNanoseconds();
        m_longestClock = qMax(m_longestClock, m_clock.nsecsElapsed());
        m_longestProcessor = qMax(m_longestProcessor, now - m_processor);
        m_clock.start();
        m_processor = now;
    }
    double clockMilliseconds() const { return double(m_longestClock) / 1e6; }
    double processorMilliseconds() const { return double(m_longestProcessor) / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_processor = 0;
    qint64 m_longestClock = 0;
    qint64 m_longestProcessor = 0;
};

/// Runs the event loop until the condition holds, without the pauses of a waiting test.
void turnUntil(const std::function<bool()> &condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}

class Measurement
{
public:
    explicit Measurement(int jobs)
        : m_jobs(jobs)
        , m_defaults(Defaults::userPath())
        , m_app(m_defaults)
    {
        m_engine.answerHistory(bench::historyReply(jobs));
        m_app.restoreWaiting();
    }

    void run()
    {
        printf("%6d jobs\n", m_jobs);
        measure("the loop alone", [this] { settle(); });
        measure("first history", [this] { poll(); });
        measure("unchanged history", [this] { poll(); });
        m_engine.answerHistory(bench::historyReply(m_jobs, 1));
        measure("one job changed", [this] { poll(); });
        m_engine.answerStatus(R"({"latest_job":{"id":"20250314-102233-000000","progress":"46%"},"library":"/calls"})");
        measure("progress changed", [this] { poll(); });
        measure("a file queued behind a job", [this] { m_app.enqueue({m_engine.recording(u"a.m4a"_s)}, {}); });
        m_engine.answerHistory(bench::historyReply(m_jobs, 2).replace("transcribing", "ready"));
        measure("a file started", [this] {
            poll();
            turnUntil([this] { return !m_app.jobs().starting && !m_app.jobs().polling; });
        });
        printf("RESULT controller's longest stall at work, %d transcripts | %.1f ms | - | %.0f ms | %s\n", m_jobs, m_worst,
               frame, m_worst <= frame ? "yes" : "no");
    }

private:
    template<typename Work>
    void measure(const char *what, Work work)
    {
        m_probe.restart();
        work();
        m_probe.turn();
        printf("  %-28s longest stall %8.3f ms, of it at work %8.3f ms\n", what, m_probe.clockMilliseconds(),
               m_probe.processorMilliseconds());
        fflush(stdout);
        m_worst = qMax(m_worst, m_probe.processorMilliseconds());
    }
    void poll()
    {
        turnUntil([this] { return !m_app.jobs().polling; });
        m_app.poll();
        turnUntil([this] { return !m_app.jobs().polling; });
    }
    void settle()
    {
        bool answered = false;
        RunCallTimeout({u"settle"_s}, &m_app, [&](const EngineReply &) { answered = true; }, 0);
        turnUntil([&] { return answered; });
    }

    int m_jobs;
    double m_worst = 0;
    test::ScriptedEngine m_engine;
    Defaults m_defaults;
    AppDelegate m_app;
    Probe m_probe;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    for (const int jobs : {100, 1'000, 10'000})
        Measurement(jobs).run();
    return 0;
}
