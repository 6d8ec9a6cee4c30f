// Prints how long the main thread is held at the longest while the window shows many transcripts. "--soak MINUTES" counts
// the turns that took too long instead, "--growth" tells how the cost of a poll grows with the number of transcripts.
// A stall is judged by the main thread's processor time, but by the clock where that says less: by the clock alone, other
// programs' turns are in it too.

#include "app/AppDelegate.h"
#include "settings/Defaults.h"
#include "support/ScriptedEngine.h"
#include "ui/Appearance.h"
#include "ui/MainWindow.h"
#include "ui/Metrics.h"
#include "ui/TranscriptList.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <array>
#include <cstdio>
#include <ctime>
#include <limits>

#include <malloc.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

constexpr qint64 stallNanoseconds = 16'000'000;
constexpr qint64 tellNanoseconds = 8'000'000; // a turn this long is told singly

qint64 nanoseconds(clockid_t clock)
{
    timespec now{};
    ::clock_gettime(clock, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

qint64 threadNanoseconds()
{
    return nanoseconds(CLOCK_THREAD_CPUTIME_ID);
}

/// Asks the event loop for its turn again and again and keeps the longest time that it took to get it: by the
/// clock, which on a busy machine holds other programs' turns too, and in processor time of the main thread.
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
        m_longestClock = m_longestProcessor = 0;
        m_turns = m_overClock = m_overProcessor = 0;
        m_sinceRestart.start();
        begin();
    }
    void restartTurn() { begin(); }
    /// For what sleeps between its events: with the probe there is always one more.
    void stop() { m_timer.stop(); }
    void turn()
    {
        const qint64 clock = m_clock.nsecsElapsed();
        // Virtual computers sometimes account for time that never passed.
        const qint64 processor = qMin(threadNanoseconds() - m_processor, clock);
        m_longestClock = qMax(m_longestClock, clock);
        m_longestProcessor = qMax(m_longestProcessor, processor);
        ++m_turns;
        m_overClock += clock > stallNanoseconds;
        m_overProcessor += processor > stallNanoseconds;
        if (processor > tellNanoseconds) {
            const rusage now = usage();
            printf("  turn %lld, %.3f s from the beginning: %.2f ms at work, %.2f of them in the kernel, %ld pages fetched\n",
                   m_turns, double(m_sinceRestart.elapsed()) / 1000, double(processor) / 1e6,
                   milliseconds(now.ru_stime) - milliseconds(m_usage.ru_stime), now.ru_minflt - m_usage.ru_minflt);
        }
        begin();
    }
    double longestAtWork() const { return double(m_longestProcessor) / 1e6; }
    void printCounts(const char *what, int lostByOthers) const
    {
        printf("%s: %lld turns, %lld over 16 ms at work, %lld by the clock; longest %.2f ms at work, %.2f by the clock\n", what,
               m_turns, m_overProcessor, m_overClock, double(m_longestProcessor) / 1e6, double(m_longestClock) / 1e6);
        printf("RESULT %s, turns over 16 ms at work | %lld | %d in a loop that does nothing, as long | 0 | %s\n", what,
               m_overProcessor, lostByOthers, m_overProcessor == 0 ? "yes" : "no");
    }
    void print(const char *what)
    {
        turn();
        printf("  %-44s longest stall %8.2f ms, of it at work %8.2f ms\n", what, double(m_longestClock) / 1e6,
               double(m_longestProcessor) / 1e6);
        fflush(stdout);
    }

private:
    void begin()
    {
        m_clock.start();
        m_usage = usage();
        m_processor = threadNanoseconds();
    }
    static rusage usage()
    {
        rusage now{};
        ::getrusage(RUSAGE_THREAD, &now);
        return now;
    }
    static double milliseconds(const timeval &time) { return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3; }

    QTimer m_timer;
    QElapsedTimer m_sinceRestart;
    QElapsedTimer m_clock;
    rusage m_usage{};
    qint64 m_processor = 0;
    qint64 m_longestClock = 0;
    qint64 m_longestProcessor = 0;
    qlonglong m_turns = 0;
    qlonglong m_overClock = 0;
    qlonglong m_overProcessor = 0;
};

/// How often a loop that does nothing but read the clocks for that long would be said to be held for more than a frame.
/// Time that a virtual computer's host takes passes as work of the thread that it meets.
int stallsOfNothing(double minutes)
{
    int stalls = 0;
    qint64 last = nanoseconds(CLOCK_MONOTONIC);
    qint64 lastProcessor = threadNanoseconds();
    const qint64 end = last + qint64(minutes * 60e9);
    while (last < end) {
        const qint64 now = nanoseconds(CLOCK_MONOTONIC);
        const qint64 processor = threadNanoseconds();
        stalls += qMin(now - last, processor - lastProcessor) > stallNanoseconds;
        last = now;
        lastProcessor = processor;
    }
    return stalls;
}

/// The least that the heap held in the second quarter of a run and in the last: more in the last is growth.
class HeapByQuarter
{
public:
    /// Part of the run that is done: 0 to 1.
    void look(double done)
    {
        size_t &least = m_least.at(size_t(done * 4));
        least = qMin(least, ::mallinfo2().uordblks);
    }
    void print(const char *what) const
    {
        constexpr double most = 1.05;
        const double before = double(m_least[1]);
        const double after = double(m_least[3]);
        printf("RESULT %s, heap in the last quarter | %.1f MB, %.3f times the second's | %.1f MB | at most %.2f times | %s\n", what,
               after / 1e6, after / before, before / 1e6, most, after <= most * before ? "yes" : "no");
    }

private:
    static constexpr size_t none = std::numeric_limits<size_t>::max();
    std::array<size_t, 4> m_least{none, none, none, none};
};

void turnUntil(const std::function<bool()> &condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}

QByteArray textOf(const QJsonObject &job)
{
    return QJsonDocument(job).toJson(QJsonDocument::Compact);
}

/// Each as its text: writing all of them anew for every change takes the toolkit minutes where there are many.
QList<QByteArray> someJobs(int count)
{
    const QStringList resting{u"ready"_s, u"ready"_s, u"ready"_s, u"failed"_s, u"cancelled"_s};
    QList<QByteArray> jobs;
    for (int i = 0; i < count; ++i) {
        jobs.append(textOf({
            {u"id"_s, u"20250314-102233-%1"_s.arg(i, 6, 10, '0'_L1)},
            {u"status"_s, i == 0 ? u"transcribing"_s : resting.at(i % resting.size())},
            {u"paused"_s, false},
            {u"hidden"_s, false},
            {u"title"_s, u"Interview with the director of the school, part %1"_s.arg(i)},
            {u"call_dir"_s, u"/home/somebody/Documents/CallsRawFiles/2025-03-14 10-22 %1"_s.arg(i)},
            {u"recorded_at"_s, u"2025-03-14T10:22:33"_s},
            {u"duration_seconds"_s, 60 + i % 5000},
            {u"engine"_s, i % 2 == 0 ? u"whisper"_s : u"parakeet"_s},
            {u"engine_choice"_s, u"auto"_s},
            {u"language"_s, i % 3 == 0 ? u"uk"_s : u"en"_s},
            {u"completed_at"_s, u"2025-03-14T10:52:33"_s}}));
    }
    return jobs;
}

class Measurement
{
public:
    explicit Measurement(int jobs)
        : m_jobs(someJobs(jobs))
        , m_defaults(Defaults::userPath())
        , m_app(m_defaults)
    {
        answerHistory();
    }

    void run()
    {
        printf("%lld jobs\n", qlonglong(m_jobs.size()));
        open();
        scroll();
        change();
        useKeyboard();
        addFiles();
        printf("RESULT longest stall at work, %lld transcripts, %s | %.1f ms | - | 16 ms | %s\n", qlonglong(m_jobs.size() + 1),
               m_worstWhat, m_worst, m_worst <= 16 ? "yes" : "no");
    }

    /// What a person and an engine do to the window, over and over.
    void soak(double minutes)
    {
        int stalls = stallsOfNothing(minutes / 2);
        m_probe.restart();
        m_app.applicationDidFinishLaunching(AppDelegate::Face::Window);
        findWindow();
        turnUntil([this] { return m_app.jobs().loaded && !m_app.jobs().polling; });
        m_probe.print("the start, which start-up measures");
        m_probe.restart();
        QElapsedTimer since;
        since.start();
        constexpr int steps = 50;
        int round = 0;
        int step = steps;
        HeapByQuarter heap;
        // Each thing from the event loop, which is where what is to be deleted later goes.
        QTimer work;
        QObject::connect(&work, &QTimer::timeout, &work, [&] {
            if (m_app.jobs().polling)
                return;
            if (step++ < steps) {
                QScrollBar *bar = m_window->list()->verticalScrollBar();
                bar->setValue((bar->value() + 997) % qMax(1, bar->maximum()));
                return;
            }
            const double done = double(since.elapsed()) / (minutes * 60'000);
            if (done >= 1)
                return QCoreApplication::quit();
            heap.look(done);
            step = 0;
            forgetOldAnswers();
            setTitle(round % 2 == 0 ? round % 5 : int(round * 7919LL % m_jobs.size()), u"Changed %1"_s.arg(round));
            m_engine.answerStatus(R"({"latest_job":{"id":"20250314-102233-000000","progress":")" + QByteArray::number(round % 100)
                                  + R"(%"}})");
            ++round;
            m_probe.restartTurn(); // writing the scripted engine's reply is no work of the application's
            m_app.poll();
        });
        work.start(0);
        QCoreApplication::exec();
        const QByteArray what = u"soak of %1 min with 10,000 transcripts"_s.arg(minutes).toUtf8();
        printf("%d polls\n", round);
        m_probe.stop();
        stalls += stallsOfNothing(minutes / 2);
        m_probe.printCounts(what.constData(), stalls);
        heap.print(what.constData());
    }

    /// Processor time of one poll, the best of some: of the main thread and of the whole program.
    void growth()
    {
        m_probe.stop();
        m_app.applicationDidFinishLaunching(AppDelegate::Face::Window);
        findWindow();
        turnUntil([this] { return m_app.jobs().loaded && !m_app.jobs().polling; });
        turns();
        cost("unchanged", [] {});
        cost("one row changed", [this] { setTitle(int(m_jobs.size() / 2), u"Changed %1"_s.arg(++m_changes)); });
    }

private:
    template <typename Prepare> void cost(const char *what, Prepare prepare)
    {
        double main = 1e9;
        double all = 1e9;
        for (int run = 0; run < 7; ++run) {
            prepare();
            turnUntil([this] { return !m_app.jobs().polling; });
            const qint64 allBefore = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
            const qint64 before = threadNanoseconds();
            m_app.poll();
            // Sleeping between the events: a loop that turns without a pause is no cost of the poll.
            while (m_app.jobs().polling)
                QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
            m_window->repaint();
            main = qMin(main, double(threadNanoseconds() - before) / 1e6);
            all = qMin(all, double(nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - allBefore) / 1e6);
        }
        printf("%7lld transcripts, %-16s main thread %8.2f ms, whole program %8.2f ms\n", qlonglong(m_jobs.size()), what, main, all);
        fflush(stdout);
    }
    void findWindow()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *window = qobject_cast<MainWindow *>(widget))
                m_window = window;
        }
    }

    void open()
    {
        m_probe.restart();
        m_app.applicationDidFinishLaunching(AppDelegate::Face::Window);
        m_probe.print("building and showing the window");
        findWindow();
        measure("the first history",
                [this] { turnUntil([this] { return m_app.jobs().loaded && !m_app.jobs().polling; }); });
        measure("painting it", [this] { turns(); });
        measure("the loop alone", [this] { turns(); });
    }

    void scroll()
    {
        QScrollBar *bar = m_window->list()->verticalScrollBar();
        const auto to = [this, bar](int value) {
            bar->setValue(value);
            QCoreApplication::processEvents();
        };
        measure("scrolling by 40 pixels, 500 times", [&] {
            for (int i = 0; i < 500; ++i)
                to(40 * i);
        });
        measure("scrolling through in 300 steps", [&] {
            for (int i = 0; i <= 300; ++i)
                to(int(qint64(bar->maximum()) * i / 300));
        });
        measure("from the end to the top", [&] { to(0); });
    }

    void change()
    {
        measure("a poll that changes nothing", [this] { poll(); });
        setTitle(2, u"A row in sight"_s);
        measure("a poll that changes a row in sight", [this] { poll(); });
        setTitle(int(m_jobs.size() * 9 / 10), u"A row out of sight"_s);
        measure("a poll that changes a row out of sight", [this] { poll(); });
        m_engine.answerStatus(R"({"latest_job":{"id":"20250314-102233-000000","progress":"46%"}})");
        measure("a poll with progress", [this] { poll(); });
        m_window->list()->selectRow(int(m_jobs.size()) - 1);
        setTitle(2, u"Changed again"_s);
        measure("the same with the last row selected", [this] { poll(); });
        m_jobs.removeAt(1);
        answerHistory();
        measure("a poll without a row", [this] { poll(); });
    }

    void useKeyboard()
    {
        const auto press = [this](const char *what, Qt::Key key) {
            measure(what, [this, key] {
                QTest::keyClick(m_window->list(), key);
                turns();
            });
        };
        press("Home", Qt::Key_Home);
        press("End", Qt::Key_End);
        press("Page Up", Qt::Key_PageUp);
        press("a letter that begins no title", Qt::Key_Q);
        measure("a new width", [this] {
            for (int width = 800; width < 1000; width += 10) {
                m_window->resize(width, m_window->height());
                QCoreApplication::processEvents();
            }
        });
    }

    void addFiles()
    {
        QList<QUrl> files;
        QStringList paths;
        for (int i = 0; i < 5000; ++i) {
            paths.append(m_engine.home() + u"/part %1.m4a"_s.arg(i));
            files.append(QUrl::fromLocalFile(paths.last()));
        }
        measure("5,000 files into the panel", [&] {
            m_app.addFiles(files);
            turns();
        });
        measure("closing the panel", [this] {
            m_app.cancelSetup();
            turns();
        });
        measure("5,000 files queued", [&] {
            m_app.enqueue(paths, {});
            turns();
        });
        measure("a poll that changes nothing", [this] { poll(); });
    }

    template <typename Work> void measure(const char *what, Work work)
    {
        m_probe.restart();
        work();
        m_probe.print(what);
        if (m_probe.longestAtWork() > m_worst) {
            m_worst = m_probe.longestAtWork();
            m_worstWhat = what;
        }
    }
    static void turns()
    {
        for (int turn = 0; turn < 200; ++turn)
            QCoreApplication::processEvents();
    }
    void poll()
    {
        turnUntil([this] { return !m_app.jobs().polling; });
        m_app.poll();
        turnUntil([this] { return !m_app.jobs().polling; });
        turns();
    }
    void setTitle(int index, const QString &title)
    {
        QJsonObject changed = QJsonDocument::fromJson(m_jobs.at(index)).object();
        changed[u"title"_s] = title;
        m_jobs[index] = textOf(changed);
        answerHistory();
    }
    /// Of the first ones some stand for the whole run, and the last ones are in use; nobody reads those between. Left there,
    /// they fill the computer's memory as what is cached of the disk, and finding room for the application then becomes
    /// work of its main thread.
    void forgetOldAnswers()
    {
        constexpr int kept = 8;
        const QDir answers(m_engine.path(u"answers"_s));
        const QStringList sets = answers.entryList({u"set.*"_s}, QDir::Dirs, QDir::Time | QDir::Reversed);
        for (qsizetype i = kept; i < sets.size() - kept; ++i)
            QDir(answers.filePath(sets.at(i))).removeRecursively();
    }
    void answerHistory() { m_engine.answerHistory('[' + m_jobs.join(',') + ']'); }

    QList<QByteArray> m_jobs;
    test::ScriptedEngine m_engine;
    Defaults m_defaults;
    AppDelegate m_app;
    MainWindow *m_window = nullptr;
    double m_worst = 0;
    const char *m_worstWhat = "";
    int m_changes = 0;
    Probe m_probe;
};

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    applyAppearance(application);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == u"--soak") {
        Measurement(10'000).soak(arguments.value(2, u"1"_s).toDouble());
    } else if (arguments.value(1) == u"--growth") {
        for (const int jobs : {100, 1'000, 10'000, 100'000})
            Measurement(jobs).growth();
    } else {
        for (const int jobs : {100, 10'000})
            Measurement(jobs).run();
    }
    return 0;
}
