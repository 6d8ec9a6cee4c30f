#include "Samples.h"

#include "engine/EngineReplies.h"
#include "list/Describe.h"
#include "list/Rows.h"
#include "settings/Defaults.h"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUrl>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

RawReply replyOf(const benchmark::State &state, int variant = 0)
{
    return {0, bench::historyReply(int(state.range(0)), variant), {}};
}

JobsState stateOf(const RawReply &reply)
{
    JobsState jobs;
    jobs.loaded = true;
    jobs.history = ReadHistory(reply, nullptr).history;
    jobs.latestJob = QJsonObject{{u"id"_s, u"20250314-102233-000000"_s}, {u"progress"_s, u"45%"_s}};
    AddWaiting(jobs.waiting, {u"/home/somebody/one.m4a"_s, u"/home/somebody/two.m4a"_s}, {u"auto"_s, u"en"_s, true, false});
    return jobs;
}

/// The floor of everything that looks at a reply.
void parseFloor(benchmark::State &state)
{
    const RawReply reply = replyOf(state);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(reply.out));
    state.SetBytesProcessed(qint64(state.iterations()) * reply.out.size());
}

/// Off the main thread: a reply that differs from the one before.
void readChangedHistory(benchmark::State &state)
{
    const RawReply reply = replyOf(state);
    const HistoryPointer previous = ReadHistory(replyOf(state, 1), nullptr).history;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(ReadHistory(reply, previous));
}

/// Off the main thread: the same reply again.
void readUnchangedHistory(benchmark::State &state)
{
    const RawReply reply = replyOf(state);
    const HistoryPointer previous = ReadHistory(reply, nullptr).history;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(ReadHistory(reply, previous));
}

/// On the main thread, at every refresh: the rows and their signature.
void buildRows(benchmark::State &state)
{
    const JobsState jobs = stateOf(replyOf(state));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(BuildRows(jobs));
}

/// All that an unchanged reply costs, on both threads: reading, rows, signature, comparison, summary.
void unchangedRefresh(benchmark::State &state)
{
    const RawReply reply = replyOf(state);
    JobsState jobs = stateOf(reply);
    const QString shown = BuildRows(jobs).signature;
    for ([[maybe_unused]] auto _ : state) {
        jobs.history = ReadHistory(reply, jobs.history).history;
        const RowList rows = BuildRows(jobs);
        if (rows.signature != shown)
            state.SkipWithError("the signature changed");
        benchmark::DoNotOptimize(SummaryLine({{}, true, false, rows.rows.size(), rows.counts, jobs.waiting.size()}));
    }
}

/// Every row once; the list asks for those in sight only.
void describeAll(benchmark::State &state)
{
    const JobsState jobs = stateOf(replyOf(state));
    const Rows rows = BuildRows(jobs).rows;
    for ([[maybe_unused]] auto _ : state) {
        for (qsizetype index = 0; index < rows.size(); ++index)
            benchmark::DoNotOptimize(Describe(rows.at(index), jobs.latestJob, {}));
    }
    state.SetItemsProcessed(qint64(state.iterations()) * rows.size());
}

/// The last row found by its key.
void findLastRow(benchmark::State &state)
{
    const Rows rows = BuildRows(stateOf(replyOf(state))).rows;
    const QString key = rows.keyAt(rows.size() - 1);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(RowIndex(rows, key));
}

/// Off the main thread, at every start: the ids of all jobs known before it.
void jobIds(benchmark::State &state)
{
    const JobsState jobs = stateOf(replyOf(state));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(JobIds(*jobs.history));
}

/// Off the main thread, at every start: the queue and the start in flight written to the disk, and then the
/// queue without it.
void storeStart(benchmark::State &state)
{
    const QTemporaryDir folder;
    Defaults defaults(folder.filePath(u"settings.json"_s));
    const JobsState jobs = stateOf(replyOf(state));
    const QVariantMap start = StoredStart({jobs.waiting.first(), JobIds(*jobs.history)});
    for ([[maybe_unused]] auto _ : state) {
        defaults.setValues({{u"waitingQueue"_s, StoredQueue(jobs.waiting)}, {u"startInFlight"_s, start}});
        defaults.setValues({{u"waitingQueue"_s, StoredQueue(jobs.waiting)}, {u"startInFlight"_s, QVariant()}});
    }
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(parseFloor)->Apply(sizes);
BENCHMARK(readChangedHistory)->Apply(sizes);
BENCHMARK(readUnchangedHistory)->Apply(sizes);
BENCHMARK(buildRows)->Apply(sizes);
BENCHMARK(unchangedRefresh)->Apply(sizes);
BENCHMARK(describeAll)->Apply(sizes);
BENCHMARK(findLastRow)->Apply(sizes);
BENCHMARK(jobIds)->Apply(sizes);
BENCHMARK(storeStart)->Apply(sizes);

/// Keeps the processor times, to hold them against the floor at the end.
class KeepingReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            m_microseconds[run.benchmark_name()] = run.GetAdjustedCPUTime();
    }
    void printRatio(const std::string &name, const std::string &size) const
    {
        const auto ours = m_microseconds.find(name + '/' + size);
        const auto floor = m_microseconds.find("parseFloor/" + size);
        if (ours != m_microseconds.end() && floor != m_microseconds.end())
            printf("RESULT %s, %s transcripts | %.0f µs, ratio %.2f | parsing alone %.0f µs | - | -\n", name.c_str(),
                   size.c_str(), ours->second, ours->second / floor->second, floor->second);
    }

private:
    std::map<std::string, double> m_microseconds;
};

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    KeepingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const char *name : {"readChangedHistory", "readUnchangedHistory", "buildRows", "unchangedRefresh"}) {
        for (const char *size : {"100", "1000", "10000", "100000"})
            reporter.printRatio(name, size);
    }
    return 0;
}
