#include "store/Database.h"
#include "store/Jobs.h"
#include "store/Schema.h"
#include "store/Segments.h"
#include "store/Settings.h"
#include "store/Transcripts.h"

#include "Support.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QJsonArray history(Database &database)
{
    QByteArray all;
    forEachEntries(database, [&](const QByteArray &entries) { all += (all.isEmpty() ? "" : ",") + entries; });
    return QJsonDocument::fromJson('[' + all + ']').array();
}

} // namespace

TEST(Store, startsEmptyWithTheNewestSchema)
{
    const test::Home home;
    Database database(home.paths());
    EXPECT_EQ(database.value(u"PRAGMA user_version"_s).toInt(), newestSchema());
    EXPECT_EQ(database.value(u"PRAGMA journal_mode"_s).toString(), u"wal"_s);
    EXPECT_EQ(database.value(u"PRAGMA foreign_keys"_s).toInt(), 1);
    EXPECT_EQ(database.integrity(), u"ok"_s);
    EXPECT_TRUE(history(database).isEmpty());
    EXPECT_FALSE(latestJob(database));
    EXPECT_FALSE(nextJob(database));
}

TEST(Store, keepsEveryFieldOfAJob)
{
    const test::Home home;
    Job job = test::sampleJob();
    {
        Database database(home.paths());
        job = test::addJob(database, job);
        job.status = Status::failed.toString();
        job.paused = job.hidden = job.planned = true;
        job.error = u"Something."_s;
        job.durationSeconds = 1.25;
        job.engine = u"whisper"_s;
        job.recogniser = u"PocketSphinx"_s;
        job.language = u"en"_s;
        job.progress = u"3/4"_s;
        job.attempts = 2;
        job.attemptsAt = 3;
        job.completedAt = contractNow();
        Transaction transaction(database);
        updateJob(database, job);
        transaction.commit();
    }
    Database database(home.paths());
    const std::optional<Job> found = jobById(database, job.id);
    ASSERT_TRUE(found);
    EXPECT_EQ(historyEntry(*found), historyEntry(job));
    EXPECT_EQ(found->seq, job.seq);
    EXPECT_EQ(found->audio, job.audio);
    EXPECT_EQ(found->recogniser, job.recogniser);
    EXPECT_EQ(found->progress, job.progress);
    EXPECT_EQ(found->planned, job.planned);
    EXPECT_EQ(found->attempts, job.attempts);
    EXPECT_EQ(found->attemptsAt, job.attemptsAt);
    EXPECT_EQ(found->clean, job.clean);
}

TEST(Store, historyIsNewestFirstAndWholeAcrossBlocks)
{
    const test::Home home;
    Database database(home.paths());
    {
        Transaction transaction(database);
        for (int i = 0; i < 700; ++i) {
            Job job = test::sampleJob(u"Job %1"_s.arg(i));
            insertJob(database, job);
        }
        transaction.commit();
    }
    const QJsonArray entries = history(database);
    ASSERT_EQ(entries.size(), 700);
    for (int i = 0; i < 700; ++i)
        EXPECT_EQ(entries[i][u"title"].toString(), u"Job %1"_s.arg(699 - i));
}

TEST(Store, aFolderThatWasThrownAwayIsNotListed)
{
    const test::Home home;
    Database database(home.paths());
    const auto add = [&](const QString &title, QStringView status) {
        Job job = test::sampleJob(title);
        job.callDir = home.file(u"library/"_s + title);
        QDir().mkpath(job.callDir);
        job = test::addJob(database, job);
        return changeJob(database, job.id, [&](Job &changed) { changed.status = status.toString(); });
    };
    const Job done = add(u"Done, 1 of 2"_s, Status::ready);
    const Job failed = add(u"Failed"_s, Status::failed);
    const Job working = add(u"Working"_s, Status::cleaning);
    const auto titles = [&] {
        QStringList found;
        for (const QJsonValue &entry : history(database))
            found.append(entry[u"title"].toString());
        return found;
    };
    const QStringList all{u"Working"_s, u"Failed"_s, u"Done, 1 of 2"_s};
    EXPECT_EQ(titles(), all);
    for (const Job &job : {failed, working})
        QDir(job.callDir).removeRecursively();
    EXPECT_EQ(titles(), (QStringList{u"Working"_s, u"Done, 1 of 2"_s})) << "what is worked on is listed";
    QDir(done.callDir).removeRecursively();
    EXPECT_EQ(titles(), QStringList{u"Working"_s});
    changeJob(database, working.id, [](Job &job) { job.status = Status::cancelled.toString(); });
    EXPECT_TRUE(titles().isEmpty());
    QDir().mkpath(failed.callDir);
    EXPECT_EQ(titles(), QStringList{u"Failed"_s}) << "restored";
    QDir(home.file(u"library"_s)).removeRecursively();
    EXPECT_EQ(titles(), all) << "the whole library is away";
}

TEST(Store, aJobThatFailedForWantOfItsFolderIsListed)
{
    const test::Home home;
    Database database(home.paths());
    QDir().mkpath(home.file(u"library"_s));
    Job job = test::sampleJob();
    job.callDir = home.file(u"library/gone"_s);
    job = test::addJob(database, job);
    changeJob(database, job.id, [](Job &failed) {
        failed.status = Status::failed.toString();
        failed.error = u"The recording is no longer in its folder."_s;
        failed.lost = true;
    });
    EXPECT_TRUE(jobById(database, job.id)->lost);
    ASSERT_EQ(history(database).size(), 1);
    EXPECT_EQ(history(database)[0][u"error"].toString(), u"The recording is no longer in its folder."_s);
    changeJob(database, job.id, [](Job &later) { later.lost = false; });
    EXPECT_TRUE(history(database).isEmpty()) << "thrown away after its end";
}

TEST(Store, theEntryChangesWithTheJob)
{
    const test::Home home;
    Database database(home.paths());
    const Job job = test::addJob(database, test::sampleJob());
    changeJob(database, job.id, [](Job &changed) { changed.title = u"Renamed"_s; });
    EXPECT_EQ(history(database)[0][u"title"].toString(), u"Renamed"_s);
}

TEST(Store, aRefusedChangeWritesNothingAndTellsNobody)
{
    const test::Home home;
    Database database(home.paths());
    const Job job = test::addJob(database, test::sampleJob());
    const QByteArray before = test::contentOf(home.paths().changed);
    EXPECT_EQ(test::sentenceOf([&] {
                  changeJob(database, job.id, [](Job &changed) {
                      changed.title = u"Renamed"_s;
                      throw Failure(u"No."_s);
                  });
              }),
              u"No."_s);
    EXPECT_EQ(jobById(database, job.id)->title, job.title);
    EXPECT_EQ(test::contentOf(home.paths().changed), before);
    EXPECT_EQ(test::sentenceOf([&] { changeJob(database, u"nope"_s, [](Job &) {}); }),
              u"There is no transcription with the number “nope”."_s);
}

TEST(Store, everyChangeReplacesTheWatchedFile)
{
    const test::Home home;
    Database database(home.paths());
    const Job job = test::addJob(database, test::sampleJob());
    changeJob(database, job.id, [](Job &changed) { changed.hidden = true; });
    const QByteArray first = test::contentOf(home.paths().changed);
    changeJob(database, job.id, [](Job &changed) { changed.hidden = false; });
    EXPECT_FALSE(first.isEmpty());
    EXPECT_NE(test::contentOf(home.paths().changed), first);
}

TEST(Store, theOldestUnfinishedUnpausedJobIsNext)
{
    const test::Home home;
    Database database(home.paths());
    const auto add = [&](QStringView status, bool paused) {
        Job job = test::addJob(database, test::sampleJob());
        return changeJob(database, job.id, [&](Job &changed) {
            changed.status = status.toString();
            changed.paused = paused;
        });
    };
    const Job done = add(Status::ready, false);
    EXPECT_FALSE(nextJob(database));
    EXPECT_EQ(latestJob(database)->id, done.id);
    const Job paused = add(Status::transcribing, true);
    EXPECT_FALSE(nextJob(database));
    EXPECT_EQ(latestJob(database)->id, paused.id);
    const Job queued = add(Status::queued, false);
    const Job running = add(Status::cleaning, false);
    add(Status::failed, false);
    EXPECT_EQ(nextJob(database)->id, queued.id);
    EXPECT_EQ(latestJob(database)->id, running.id);
    // Of two in the middle, that which the worker has taken, unless it was put down since.
    noteTaken(database, running.seq);
    changeJob(database, paused.id, [](Job &continued) { continued.paused = false; });
    EXPECT_EQ(nextJob(database)->id, paused.id);
    EXPECT_EQ(latestJob(database)->id, running.id);
    noteTaken(database, paused.seq);
    EXPECT_EQ(latestJob(database)->id, paused.id);
    changeJob(database, paused.id, [](Job &again) { again.paused = true; });
    EXPECT_EQ(latestJob(database)->id, running.id);
}

TEST(Store, aCallDirIsKnownByItsNameWhateverThePathToIt)
{
    const test::Home home;
    Database database(home.paths());
    Job job = test::sampleJob();
    job.callDir = u"/mnt/disk/2025-03-14 10.22 100 % їжа"_s;
    test::addJob(database, job);
    EXPECT_TRUE(hasCallDirNamed(database, u"2025-03-14 10.22 100 % їжа"_s));
    for (const QString &other : {u"їжа"_s, u"2025-03-14 10.22 100 %"_s, u"2025-03-14 10.22 100 _ їжа"_s, u"disk"_s})
        EXPECT_FALSE(hasCallDirNamed(database, other)) << other.toStdString();
}

TEST(Store, theOrderIsThatOfArrivalWhateverTheClockSays)
{
    test::Home home;
    Database database(home.paths());
    QStringList arrived;
    for (const char *time : {"2025-03-14T10:22:33Z", "2099-01-01T00:00:00Z", "1970-01-01T00:00:00Z"}) {
        Job job = test::sampleJob();
        job.createdAt = QString::fromLatin1(time);
        job.recordedAt = job.createdAt.chopped(1);
        arrived.prepend(test::addJob(database, job).id);
        EXPECT_EQ(nextJob(database)->id, arrived.last());
    }
    QByteArray entries;
    forEachEntries(database, [&](const QByteArray &more) { entries += more; });
    qsizetype at = -1;
    for (const QString &id : arrived) {
        EXPECT_GT(entries.indexOf(id.toUtf8()), at);
        at = entries.indexOf(id.toUtf8());
    }
}

TEST(Store, allAreHiddenAtOnceAsOneByOne)
{
    test::Home home;
    Database database(home.paths());
    Job ready = test::sampleJob(uR"(a ","hidden":false," title)"_s);
    ready.status = Status::ready.toString();
    ready = test::addJob(database, ready);
    const Job waiting = test::addJob(database, test::sampleJob());
    const auto entries = [&] {
        QByteArray all;
        forEachEntries(database, [&](const QByteArray &more) { all += more; });
        return all;
    };
    for (const bool hidden : {true, false}) {
        EXPECT_TRUE(hideAll(database, hidden));
        EXPECT_FALSE(hideAll(database, hidden));
        ready.hidden = hidden;
        EXPECT_EQ(jobBySeq(database, ready.seq)->hidden, hidden);
        EXPECT_FALSE(jobBySeq(database, waiting.seq)->hidden);
        EXPECT_EQ(entries(), historyEntry(waiting) + ",\n" + historyEntry(ready));
    }
}

TEST(Store, segmentsAreKeptOneByOneAndSurvive)
{
    const test::Home home;
    qint64 seq = 0;
    const std::vector<Word> words{{u"good"_s, 100, 300}, {u"тиша"_s, 300, 500}};
    {
        Database database(home.paths());
        seq = test::addJob(database, test::sampleJob()).seq;
        Transaction transaction(database);
        planSegments(database, seq, {{0, 0, 1000, {}}, {1, 1000, 2500, {}}, {2, 3000, 4000, {}}});
        keepSegment(database, seq, 0, words);
        keepSegment(database, seq, 2, {});
        transaction.commit();
    }
    Database database(home.paths());
    const std::vector<Segment> segments = segmentsOf(database, seq);
    ASSERT_EQ(segments.size(), 3U);
    EXPECT_EQ(segments[0].words, words);
    EXPECT_EQ(segments[0].text(), u"good тиша"_s);
    EXPECT_FALSE(segments[1].kept());
    EXPECT_EQ(segments[1].endMs, 2500);
    EXPECT_TRUE(segments[2].kept());
    EXPECT_EQ(keptCount(database, seq), 2);
}

TEST(Store, transcriptsAreKeptWhole)
{
    const test::Home home;
    qint64 seq = 0;
    Transcript transcript;
    transcript.lines = {
        {0, 900, u"Anna"_s, u"good  \u2028\U0001f600"_s, {{u"good"_s, 0, 300}, {u"\U0001f600"_s, 300, 900}}},
        {1000, 2000, {}, {}, {}},
        {2000, 2500, u"\u200f\u05d0"_s, u"x"_s, {{u"x"_s, 2000, 2500}}}};
    transcript.clean = u"Good.\n"_s;
    transcript.summary = Summary{{u"A \"b\"."_s}, {}};
    transcript.summary->missing = {remark(u"%@ is gone."_s, {u"%@"_s})};
    transcript.revision = 3;
    {
        Database database(home.paths());
        seq = test::addJob(database, test::sampleJob()).seq;
        EXPECT_FALSE(keptTranscript(database, seq));
        Transaction transaction(database);
        keepTranscript(database, seq, transcript);
        transaction.commit();
    }
    Database database(home.paths());
    std::optional<Transcript> kept = keptTranscript(database, seq);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->lines, transcript.lines);
    EXPECT_EQ(kept->clean, transcript.clean);
    EXPECT_EQ(kept->summary->sentences, transcript.summary->sentences);
    EXPECT_TRUE(kept->summary->tasks.isEmpty());
    ASSERT_EQ(kept->summary->missing.size(), 1);
    EXPECT_EQ(kept->summary->missing[0].format, u"%@ is gone."_s);
    EXPECT_EQ(kept->summary->missing[0].values, QStringList{u"%@"_s});
    EXPECT_EQ(kept->revision, 3);
    EXPECT_EQ(unwrittenJobs(database), std::vector<qint64>{seq});
    noteWritten(database, seq, 3);
    EXPECT_TRUE(unwrittenJobs(database).empty());

    const std::vector<Line> before = transcript.lines;
    transcript.lines.erase(transcript.lines.begin() + 1);
    transcript.lines[0].speaker.clear();
    transcript.summary.reset();
    keepTranscript(database, seq, transcript, before);
    kept = keptTranscript(database, seq);
    EXPECT_EQ(kept->lines, transcript.lines);
    EXPECT_FALSE(kept->summary);
}

TEST(Store, manyProcessesAtOnceLoseNothing)
{
    const test::Home home;
    constexpr int processes = 6;
    constexpr int each = 25;
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        const pid_t child = ::fork();
        if (child == 0) {
            try {
                Database database(home.paths()); // all of them find no store and make one
                for (int i = 0; i < each; ++i)
                    test::addJob(database, test::sampleJob(u"%1-%2"_s.arg(p).arg(i)));
                ::_exit(0);
            } catch (const Failure &failure) {
                std::fprintf(stderr, "%s\n", failure.what());
                ::_exit(1);
            }
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    Database database(home.paths());
    QSet<QString> titles;
    for (const QJsonValue &entry : history(database))
        titles.insert(entry[u"title"].toString());
    EXPECT_EQ(titles.size(), processes * each);
    EXPECT_EQ(database.integrity(), u"ok"_s);
}

TEST(Store, integrityCoversTheConditionsOfTheTables)
{
    const test::Home home;
    Database database(home.paths());
    test::addJob(database, test::sampleJob());
    EXPECT_EQ(database.integrity(), u"ok"_s);
    EXPECT_THROW(database.run(u"UPDATE jobs SET status = 'asleep'"_s), Failure) << "they hold again after it";
    database.run(u"PRAGMA ignore_check_constraints=ON"_s);
    database.run(u"UPDATE jobs SET status = 'asleep'"_s);
    EXPECT_EQ(database.integrity(), u"a job has an unknown status"_s);
}

TEST(Store, anUnfinishedTransactionLeavesNothing)
{
    const test::Home home;
    const pid_t child = ::fork();
    if (child == 0) {
        Database database(home.paths());
        Transaction transaction(database);
        Job job = test::sampleJob();
        insertJob(database, job);
        ::kill(::getpid(), SIGKILL);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    Database database(home.paths());
    EXPECT_TRUE(history(database).isEmpty());
}

TEST(Store, aNewerStoreIsLeftAlone)
{
    const test::Home home;
    {
        Database database(home.paths());
        database.run(u"PRAGMA user_version = 1000"_s);
    }
    EXPECT_TRUE(test::sentenceOf([&] { Database database(home.paths()); }).contains(u"newer version"));
}

TEST(Store, garbageIsToldOfAndLeftAlone)
{
    const test::Home home;
    QDir().mkpath(home.paths().store);
    const QByteArray garbage = QByteArray("not a store at all ").repeated(100);
    test::write(home.paths().database, garbage);
    EXPECT_TRUE(test::sentenceOf([&] {
                    Database database(home.paths());
                }).contains(u"It was left as it is"));
    EXPECT_EQ(test::contentOf(home.paths().database), garbage);
}

TEST(Settings, theLibraryIsRememberedOnceItWorks)
{
    const test::Home home;
    Database database(home.paths());
    EXPECT_EQ(libraryInUse(database).folder, home.paths().defaultLibrary);
    changeLibrary(database, home.file(u"new/./library/"_s));
    EXPECT_EQ(libraryInUse(database).folder, home.file(u"new/library"_s));
    EXPECT_TRUE(QDir(home.file(u"new/library"_s)).exists());
    test::write(home.file(u"file"_s), "x");
    EXPECT_NE(test::sentenceOf([&] { changeLibrary(database, home.file(u"file"_s)); }), u"no failure"_s);
    EXPECT_NE(test::sentenceOf([&] { changeLibrary(database, u"relative"_s); }), u"no failure"_s);
    EXPECT_NE(test::sentenceOf([&] { changeLibrary(database, u"/proc/nowhere"_s); }), u"no failure"_s);
    EXPECT_EQ(libraryInUse(database).folder, home.file(u"new/library"_s));
}

} // namespace engine
