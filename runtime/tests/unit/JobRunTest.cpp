#include "worker/JobRun.h"

#include "core/Cores.h"
#include "output/CallDirWriter.h"
#include "store/Segments.h"
#include "store/Settings.h"
#include "store/Transcripts.h"
#include "text/CleanText.h"

#include "FakeRecogniser.h"
#include "Recordings.h"

#include <QDir>

#include <latch>
#include <sched.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// A job in a store of its own, on a recording of six stretches of speech.
class JobRunTest : public testing::Test
{
protected:
    JobRunTest()
        : m_paths(m_home.paths())
        , m_database(m_paths)
        , m_lock(m_paths)
    {
        std::vector<int16_t> samples;
        for (int i = 0; i < 6; ++i) {
            test::appendNoise(samples, 1.5, 10);
            test::appendBabble(samples, 1 + 0.5 * i, 5000);
        }
        test::appendNoise(samples, 1, 10);
        m_job = newJob(samples);
    }

    Job newJob(const std::vector<int16_t> &samples)
    {
        Job job = test::sampleJob(u"Job %1"_s.arg(++m_jobs));
        job.callDir = m_home.file(job.title);
        job.audio = u"Technical files/audio.wav"_s;
        QDir().mkpath(job.callDir + u"/Technical files"_s);
        test::write(job.callDir + u'/' + job.audio, test::wav(samples));
        return test::addJob(m_database, job);
    }

    // Another job on the same recording.
    Job sameAgain()
    {
        const Job job = newJob({});
        const QString audio = job.callDir + u'/' + job.audio;
        QFile::remove(audio);
        QFile::copy(m_job.callDir + u'/' + m_job.audio, audio);
        return job;
    }

    void run(const Job &job)
    {
        run(job, [this](const Job &, const QString &) -> Recogniser & { return m_recogniser; });
    }

    void run(const Job &job, const RecogniserSource &source)
    {
        JobRun(m_database, m_lock, *jobById(m_database, job.id), source).run();
    }

    // What became of it since the last segment was kept is undone.
    void setBack(const Job &job)
    {
        changeJob(m_database, job.id, [](Job &again) { again.status = Status::queued.toString(); });
    }

    // From then on nothing longer than so many seconds is heard.
    void failAt(int seconds)
    {
        m_recogniser.act = [seconds](std::span<const int16_t> samples) -> std::vector<Word> {
            if (samples.size() > size_t(seconds) * 16000)
                throw Failure(u"No."_s);
            return test::FakeRecogniser::words(samples);
        };
    }

    // Of its first segments.
    qint64 speechMs(const Job &job, int count)
    {
        return m_database
            .value(u"SELECT sum(end_ms - start_ms) FROM segments WHERE job = ? AND number < ?"_s, {job.seq, count})
            .toLongLong();
    }

    // The progress of a job when all its speech is recognised.
    QString allOf(const Job &job)
    {
        const qint64 seconds = (speechMs(job, 1000) + 999) / 1000;
        return u"%1/%1"_s.arg(seconds);
    }

    Job stored(const Job &job) { return *jobById(m_database, job.id); }
    QByteArray transcript(const Job &job) { return test::contentOf(job.callDir + u"/Transcript.txt"_s); }

    test::Home m_home;
    Paths m_paths;
    Database m_database;
    WorkerLock m_lock;
    test::FakeRecogniser m_recogniser;
    Job m_job;
    int m_jobs = 0;
};

} // namespace

TEST_F(JobRunTest, takesARecordingToReady)
{
    run(m_job);
    const Job done = stored(m_job);
    EXPECT_EQ(done.status, u"ready"_s);
    EXPECT_EQ(done.progress, allOf(m_job));
    EXPECT_EQ(done.language, u"en"_s);
    EXPECT_EQ(done.recogniser, u"Fake"_s);
    EXPECT_TRUE(done.engine.isEmpty());
    EXPECT_FALSE(done.completedAt.isEmpty());
    EXPECT_NEAR(done.durationSeconds.value_or(0), 23.5, 0.01);
    EXPECT_EQ(transcript(m_job).count('\n'), 6);
    EXPECT_TRUE(QFile::exists(m_job.callDir + u"/Summary.md"_s));
    EXPECT_TRUE(QFile::exists(m_job.callDir + u"/Technical files/viewer.html"_s));
}

TEST_F(JobRunTest, progressThatCannotBeToldIsPassedOver)
{
    m_database.run(u"PRAGMA busy_timeout=0"_s);
    JobControl control(m_database, m_job);
    const auto show = [&](const QString &progress) { control.progress([&](Job &job) { job.progress = progress; }); };
    {
        Database other(m_paths);
        const Transaction held(other);
        EXPECT_NO_THROW(show(u"1/3"_s));
        EXPECT_THROW(control.change([](Job &job) { job.progress = u"2/3"_s; }), StoreBusy);
        EXPECT_THROW(control.progress([](Job &) {}, [] {}), StoreBusy) << "what is kept with it would be lost";
    }
    EXPECT_EQ(stored(m_job).progress, QString());
    show(u"3/3"_s);
    EXPECT_EQ(stored(m_job).progress, u"3/3"_s);
}

TEST_F(JobRunTest, whatMustNotBeLostWaitsLongerForTheStoreThanACommand)
{
    JobControl control(m_database, m_job);
    m_database.run(u"PRAGMA busy_timeout=500"_s);
    std::latch begun(1);
    std::thread other([&] {
        Database database(m_paths);
        Transaction held(database);
        begun.count_down();
        // As long as a single try of another program takes to give up.
        Database waiting(m_paths);
        waiting.run(u"PRAGMA busy_timeout=1200"_s);
        EXPECT_THROW(Transaction second(waiting), StoreBusy);
    });
    begun.wait();
    EXPECT_NO_THROW(control.change([](Job &job) { job.progress = u"1/2"_s; }));
    EXPECT_NO_THROW(control.note([] {}));
    other.join();
    EXPECT_EQ(stored(m_job).progress, u"1/2"_s);
}

TEST_F(JobRunTest, aJobThatIsReadyHasATranscriptThatAgreesWithItsFiles)
{
    run(m_job);
    const std::optional<Transcript> kept = keptTranscript(m_database, m_job.seq);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->lines, linesFrom(asLines(segmentsOf(m_database, m_job.seq), u"en"_s)));
    EXPECT_TRUE(unwrittenJobs(m_database).empty());
    for (const auto &[name, bytes] : callDirFiles(stored(m_job), *kept))
        EXPECT_EQ(test::contentOf(m_job.callDir + u'/' + name), bytes) << name.toStdString();
}

TEST_F(JobRunTest, goesOnBehindTheLastKeptSegment)
{
    run(m_job);
    const Job second = sameAgain();

    // The third segment cannot be recognised, and what was before it is kept.
    m_recogniser.act = [](std::span<const int16_t> samples) -> std::vector<Word> {
        if (samples.size() > 2 * 16000)
            throw Failure(u"Too much."_s);
        return test::FakeRecogniser::words(samples);
    };
    EXPECT_EQ(test::sentenceOf([&] { run(second); }), u"Too much."_s);
    const int kept = keptCount(m_database, second.seq);
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, 6);
    const QStringList shown = stored(second).progress.split(u'/');
    EXPECT_EQ(shown.last(), allOf(m_job).section(u'/', 1));
    EXPECT_EQ(shown.first().toInt(), int(speechMs(second, kept) / 1000));

    // Whoever is recognised again now would be given another text.
    m_recogniser.act = [](std::span<const int16_t> samples) -> std::vector<Word> {
        if (samples.size() <= 2 * 16000)
            return {{u"again"_s, 0, 1}};
        return test::FakeRecogniser::words(samples);
    };
    run(second);
    EXPECT_EQ(transcript(second), transcript(m_job));
    const auto begun = [&](int number) {
        return m_database
            .value(u"SELECT attempts FROM segments WHERE job = ? AND number = ?"_s, {second.seq, number})
            .toInt();
    };
    for (int number = 0; number < 6; ++number)
        EXPECT_EQ(begun(number), number == kept ? 2 : 1) << number;
}

TEST_F(JobRunTest, needsNoRecogniserWhereEverythingIsHeard)
{
    const RecogniserSource none = [](const Job &, const QString &) -> Recogniser & { throw Failure(u"None."_s); };
    EXPECT_EQ(test::sentenceOf([&] { run(m_job, none); }), u"None."_s);
    EXPECT_FALSE(stored(m_job).planned) << "nothing is read in vain";
    run(m_job);
    const QByteArray expected = transcript(m_job);
    setBack(m_job);
    QFile::remove(m_job.callDir + u"/Transcript.txt"_s);
    run(m_job, none);
    EXPECT_EQ(stored(m_job).status, u"ready"_s);
    EXPECT_EQ(transcript(m_job), expected);
}

namespace {

// What the history tells of a job after two recognisers: the first fails, at once or after some segments.
struct HandedOver
{
    const char *comment;
    const char *firstContract;
    const char *firstHears;
    const char *firstHeard; // the language that it finds; empty: it fails before it finds any
    const char *secondContract;
    const char *secondHears;
    const char *engine;
    const char *language;
};

const HandedOver handedOver[] = {
    {"all of it by the second", "whisper", "auto", "", "", "en", "", "en"},
    {"the other way round", "", "en", "", "whisper", "auto", "whisper", "auto"},
    {"what was found is known", "whisper", "auto", "uk", "", "uk", "whisper", "uk"},
    {"some heard, nothing found", "whisper", "auto", "?", "", "en", "whisper", "en"},
    {"a part by Whisper", "", "en", "en", "whisper", "auto", "whisper", "en"},
};

} // namespace

TEST_F(JobRunTest, theHistoryTellsWhoHasHeardTheRecording)
{
    for (const HandedOver &row : handedOver) {
        SCOPED_TRACE(row.comment);
        const Job job = sameAgain();
        const QString found = QString::fromUtf8(row.firstHeard);
        m_recogniser.called = u"First"_s;
        m_recogniser.contract = QString::fromUtf8(row.firstContract);
        m_recogniser.hears = QString::fromUtf8(row.firstHears);
        m_recogniser.heardLanguage = found == u"?" ? QString() : found;
        found.isEmpty() ? failAt(0) : failAt(2);
        EXPECT_EQ(test::sentenceOf([&] { run(job); }), u"No."_s);
        EXPECT_EQ(stored(job).recogniser, u"First"_s);
        EXPECT_EQ(keptCount(m_database, job.seq) > 0, !found.isEmpty());

        m_recogniser.called = u"Second"_s;
        m_recogniser.contract = QString::fromUtf8(row.secondContract);
        m_recogniser.hears = QString::fromUtf8(row.secondHears);
        m_recogniser.heardLanguage.clear();
        m_recogniser.act = nullptr;
        run(job);
        EXPECT_EQ(stored(job).recogniser, u"Second"_s);
        EXPECT_EQ(stored(job).engine, QString::fromUtf8(row.engine));
        EXPECT_EQ(stored(job).language, QString::fromUtf8(row.language));
    }
}

namespace {

// Whisper has heard the first part of a recording whose language it was to find out, and is gone.
struct LanguageOfTheRest
{
    const char *comment;
    const char *found;
    const char *hears; // the only recogniser that is left
    const char *refusal;
};

const LanguageOfTheRest languageOfTheRest[] = {
    {"another language", "uk", "en", "Nothing knows uk."},
    {"the same one", "en", "en", "no failure"},
    {"any language", "uk", "auto", "no failure"},
    {"none was found", "", "en", "no failure"},
};

} // namespace

TEST_F(JobRunTest, theRestIsHeardInTheLanguageThatWasFound)
{
    for (const LanguageOfTheRest &row : languageOfTheRest) {
        SCOPED_TRACE(row.comment);
        const Job job = sameAgain();
        m_recogniser.called = u"First"_s;
        m_recogniser.hears = u"auto"_s;
        m_recogniser.heardLanguage = QString::fromUtf8(row.found);
        failAt(2);
        EXPECT_EQ(test::sentenceOf([&] { run(job); }), u"No."_s);

        m_recogniser.called = u"Second"_s;
        m_recogniser.hears = QString::fromUtf8(row.hears);
        m_recogniser.act = nullptr;
        const RecogniserSource left = [&](const Job &, const QString &language) -> Recogniser & {
            if (language != u"auto" && language != m_recogniser.hears)
                throw Failure(u"Nothing knows %1."_s.arg(language));
            return m_recogniser;
        };
        const int kept = keptCount(m_database, job.seq);
        ASSERT_GT(kept, 0);
        EXPECT_EQ(test::sentenceOf([&] { run(job, left); }), QString::fromUtf8(row.refusal));
        const bool done = stored(job).status == u"ready";
        EXPECT_EQ(keptCount(m_database, job.seq) == kept, !done);
        EXPECT_EQ(stored(job).recogniser, done ? u"Second"_s : u"First"_s);
    }
}

TEST_F(JobRunTest, soundOfSeveralSegmentsIsKeptByItsSegments)
{
    m_recogniser.longest = 100000;
    m_recogniser.heardLanguage = u"uk"_s;
    m_recogniser.hears = u"auto"_s;
    // A word in the middle of each second.
    m_recogniser.act = [](std::span<const int16_t> samples) {
        std::vector<Word> words;
        for (qint64 at = 0; at + 1000 <= qint64(samples.size()) / 16; at += 1000)
            words.push_back({QString::number(at), at + 400, at + 600});
        return words;
    };
    run(m_job);
    EXPECT_EQ(stored(m_job).language, u"uk"_s);
    EXPECT_EQ(stored(m_job).progress, allOf(m_job));
    const std::vector<Segment> segments = segmentsOf(m_database, m_job.seq);
    ASSERT_EQ(segments.size(), 6U);
    for (const Segment &segment : segments) {
        ASSERT_FALSE(segment.words->empty()) << segment.number;
        EXPECT_GE(segment.words->front().startMs, segment.startMs);
        EXPECT_LE(segment.words->back().endMs, segment.endMs);
    }
}

TEST_F(JobRunTest, whatWasShownAsDoneStaysSo)
{
    m_recogniser.act = [](std::span<const int16_t>) -> std::vector<Word> { throw Failure(u"No."_s); };
    EXPECT_EQ(test::sentenceOf([&] { run(m_job); }), u"No."_s);
    // As an older engine counted: by segments.
    changeJob(m_database, m_job.id, [](Job &job) { job.progress = u"4/6"_s; });
    m_recogniser.act = [this, id = m_job.id](std::span<const int16_t> samples) {
        Database own(m_paths);
        const QStringList shown = jobById(own, id)->progress.split(u'/');
        const bool less = shown.first().toInt() * 6 < shown.last().toInt() * 4;
        return std::vector<Word>{{less ? u"less"_s : u"more"_s, 0, qint64(samples.size() / 16)}};
    };
    run(m_job);
    EXPECT_TRUE(transcript(m_job).contains("More"));
    EXPECT_FALSE(transcript(m_job).contains("Less"));
}

namespace {

// Each status that the job shows one after another, with its progress where that is told in parts.
QStringList shownWhile(Database &database, const std::function<void()> &action)
{
    database.run(u"CREATE TEMP TABLE shown (status TEXT, progress TEXT)"_s);
    database.run(u"CREATE TEMP TRIGGER showing AFTER UPDATE ON main.jobs BEGIN "
                 "INSERT INTO shown VALUES (new.status, new.progress); END"_s);
    action();
    QStringList all;
    QSqlQuery rows = database.run(u"SELECT status, progress FROM shown ORDER BY rowid"_s);
    while (rows.next()) {
        const QString status = rows.value(0).toString();
        const bool inParts = status == Status::cleaning || status == Status::analyzing;
        const QString now = inParts ? status + u' ' + rows.value(1).toString() : status;
        if (all.isEmpty() || all.last() != now)
            all.append(now);
    }
    rows.finish();
    database.run(u"DROP TRIGGER showing"_s);
    database.run(u"DROP TABLE shown"_s);
    return all;
}

} // namespace

TEST_F(JobRunTest, aJobThatGoesOnDoesNotGoBack)
{
    setTextModel(m_database, u"one that never answers"_s);
    m_database.run(u"UPDATE jobs SET speakers = 1"_s);
    const QStringList first = shownWhile(m_database, [this] { run(m_job); });
    EXPECT_EQ(first.first(), u"transcribing"_s);
    EXPECT_EQ(first.filter(u"0/1000"_s), QStringList({u"cleaning 0/1000"_s, u"analyzing 0/1000"_s}));
    EXPECT_EQ(first.last(), u"ready"_s);
    const auto again = [this](QStringView status) {
        changeJob(m_database, m_job.id, [status](Job &job) {
            job.status = status.toString();
            job.progress = u"1000/1000"_s;
        });
        return shownWhile(m_database, [this] { run(m_job); });
    };
    EXPECT_EQ(again(Status::analyzing), QStringList({u"ready"_s}));
    EXPECT_EQ(again(Status::cleaning).filter(u"cleaning"_s), QStringList());
    EXPECT_EQ(again(Status::queued).first(), u"transcribing"_s);
}

TEST_F(JobRunTest, aJobThatIsCancelledAndBegunAgainAtOnceShowsItsStage)
{
    m_recogniser.act = [this, id = m_job.id](std::span<const int16_t>) {
        Database own(m_paths);
        const QString before = jobById(own, id)->status;
        for (const QStringView status : {Status::cancelled, Status::queued})
            changeJob(own, id, [status](Job &job) { job.status = status.toString(); });
        return std::vector<Word>{{before, 0, 1}};
    };
    run(m_job);
    EXPECT_EQ(transcript(m_job).count("Transcribing\n"), 6) << transcript(m_job).toStdString();
}

TEST_F(JobRunTest, severalDecodersGiveTheSameTextAsOne)
{
    run(m_job);
    // The first sound is done last, and each says which process it was.
    m_recogniser.oneCore = true;
    const QString mark = m_home.file(u"others"_s);
    QDir().mkpath(mark);
    m_recogniser.act = [mark](std::span<const int16_t> samples) {
        if (samples.size() < 22000)
            while (QDir(mark).isEmpty(QDir::Files))
                ::sched_yield();
        test::write(mark + u'/' + QString::number(::getpid()), "x");
        return test::FakeRecogniser::words(samples);
    };
    const test::Variable two("TUPPI_DECODERS", "2");
    if (decodersAllowed() < 2)
        GTEST_SKIP() << "one core";
    const Job second = sameAgain();
    run(second);
    EXPECT_EQ(transcript(second), transcript(m_job));
    EXPECT_EQ(stored(second).progress, stored(m_job).progress);
}

TEST_F(JobRunTest, aJobThatIsPausedOrCancelledIsPutDown)
{
    for (const bool pausing : {true, false}) {
        m_recogniser.act = [&, this](std::span<const int16_t>) -> std::vector<Word> {
            // In the child; a connection of its own, as another program would have.
            Database database(m_paths);
            changeJob(database, m_job.id, [pausing](Job &job) {
                job.paused = pausing;
                if (!pausing)
                    job.status = Status::cancelled.toString();
            });
            for (;;)
                ::pause();
        };
        EXPECT_THROW(run(m_job), JobDropped);
        EXPECT_EQ(stored(m_job).paused, pausing);
        changeJob(m_database, m_job.id, [](Job &job) {
            job.paused = false;
            job.status = Status::queued.toString();
        });
    }
    m_recogniser.act = nullptr;
    run(m_job);
    EXPECT_EQ(stored(m_job).status, u"ready"_s);
}

TEST_F(JobRunTest, aRecogniserThatDiesOnceIsTriedAgain)
{
    const QString mark = m_home.file(u"died"_s);
    m_recogniser.act = [mark](std::span<const int16_t> samples) -> std::vector<Word> {
        if (!QFile::exists(mark)) {
            test::write(mark, "x");
            ::_exit(1);
        }
        return test::FakeRecogniser::words(samples);
    };
    run(m_job);
    EXPECT_EQ(stored(m_job).status, u"ready"_s);
}

TEST_F(JobRunTest, aRecogniserThatAlwaysDiesEndsTheJob)
{
    m_recogniser.act = [](std::span<const int16_t>) -> std::vector<Word> { ::_exit(1); };
    EXPECT_TRUE(test::sentenceOf([&] {
                    run(m_job);
                }).startsWith(u"The speech recogniser stopped again and again at second 1 "));
}

TEST_F(JobRunTest, twelveHoursKeepTheirTimes)
{
    // A thousand samples a second; nobody speaks before the last ten seconds.
    constexpr int rate = 1000;
    constexpr qint64 quiet = (12 * 3600 - 10) * rate;
    std::vector<int16_t> end;
    test::appendBabble(end, 5.0 * rate / 16000, 5000);
    test::appendSilence(end, 5.0 * rate / 16000);
    Job job = newJob({});
    QFile file(job.callDir + u'/' + job.audio);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray whole = test::wav(end, rate);
    const auto size = quint32(quiet * 2 + qint64(end.size()) * 2);
    for (int byte = 0; byte < 4; ++byte) {
        whole[4 + byte] = char((size + 36) >> (8 * byte));
        whole[40 + byte] = char(size >> (8 * byte));
    }
    ASSERT_EQ(file.write(whole.first(44)), 44);
    ASSERT_TRUE(file.seek(44 + quiet * 2)); // the quiet takes no room on the disk
    ASSERT_EQ(file.write(whole.mid(44)), whole.size() - 44);
    file.close();
    run(job);
    EXPECT_EQ(stored(job).status, u"ready"_s);
    EXPECT_NEAR(stored(job).durationSeconds.value_or(0), 12 * 3600, 0.5);
    EXPECT_TRUE(transcript(job).startsWith("[11:59:")) << transcript(job).toStdString();
}

// Whether this process has the copy of a recording's sound open.
bool hasSoundCopy()
{
    for (const QFileInfo &open : QDir(u"/proc/self/fd"_s).entryInfoList(QDir::System | QDir::AllEntries)) {
        if (QFile::symLinkTarget(open.filePath()).contains(u"/sound-"))
            return true;
    }
    return false;
}

TEST_F(JobRunTest, whatIsDearToOpenIsReadOnceAndHeardTheSame)
{
    std::vector<int16_t> samples;
    for (int i = 0; i < 30; ++i) {
        test::appendNoise(samples, 2, 10);
        test::appendBabble(samples, 2 + 0.1 * i, 5000);
    }
    const Job dear = newJob(samples);
    const QString wav = dear.callDir + u'/' + dear.audio;
    ASSERT_NO_FATAL_FAILURE(test::ffmpeg({u"-i"_s, wav, u"-c:a"_s, u"libopus"_s, u"-frame_duration"_s, u"2.5"_s, wav + u".mp4"_s}));
    QFile::remove(wav);
    QFile::rename(wav + u".mp4"_s, wav);
    ASSERT_TRUE(AudioReader(wav).holdsLongTable());
    const Job plain = newJob(test::soundOf(wav));
    // In a process of its own: what it finds out comes back as a word.
    m_recogniser.act = [](std::span<const int16_t> heard) {
        std::vector<Word> words = test::FakeRecogniser::words(heard);
        words.front().text += hasSoundCopy() ? u" copy"_s : u" recording"_s;
        return words;
    };
    run(dear);
    run(plain);
    const QByteArray expected = transcript(plain);
    EXPECT_GE(expected.count("recording"), 30);
    EXPECT_EQ(transcript(dear), QByteArray(expected).replace("recording", "copy"));
    EXPECT_FALSE(hasSoundCopy()) << "it goes with the run";
}

TEST_F(JobRunTest, silenceIsToldInTheWordsOfTheContract)
{
    std::vector<int16_t> silence;
    test::appendSilence(silence, 3);
    EXPECT_EQ(test::sentenceOf([&] { run(newJob(silence)); }), u"Запис містить тишу"_s);
    m_recogniser.act = [](std::span<const int16_t>) { return std::vector<Word>(); };
    EXPECT_EQ(test::sentenceOf([&] { run(m_job); }), u"Запис містить тишу"_s);
}

TEST_F(JobRunTest, whatOneRecogniserHasHeardNothingInIsHeardByAnother)
{
    const auto begun = [this] {
        return m_database.value(u"SELECT sum(attempts) FROM segments WHERE job = ?"_s, {m_job.seq}).toInt();
    };
    const auto isSilence = [this] { return test::sentenceOf([&] { run(m_job); }) == silenceError; };
    m_recogniser.act = [](std::span<const int16_t>) { return std::vector<Word>(); };
    EXPECT_TRUE(isSilence());
    EXPECT_TRUE(isSilence());
    EXPECT_EQ(begun(), 6) << "the same one hears no more the second time";

    m_recogniser.called = u"Another"_s;
    m_recogniser.hears = u"uk"_s;
    m_recogniser.act = [this, id = m_job.id](std::span<const int16_t>) {
        Database own(m_paths);
        const bool afresh = jobById(own, id)->progress.section(u'/', 0, 0).toInt() < 6;
        return std::vector<Word>{{afresh ? u"afresh"_s : u"later"_s, 0, 1}};
    };
    run(m_job);
    EXPECT_EQ(stored(m_job).status, u"ready"_s);
    EXPECT_EQ(stored(m_job).language, u"uk"_s);
    EXPECT_EQ(stored(m_job).recogniser, u"Another"_s);
    EXPECT_TRUE(transcript(m_job).startsWith("[00:00:01] Afresh\n")) << transcript(m_job).toStdString();
}

TEST_F(JobRunTest, doesOnlyWhatWasAskedFor)
{
    Job plain = test::sampleJob(u"Plain"_s);
    plain.callDir = m_job.callDir;
    plain.audio = m_job.audio;
    plain.clean = plain.analyze = false;
    plain = test::addJob(m_database, plain);
    run(plain);
    EXPECT_FALSE(QFile::exists(plain.callDir + u"/Summary.md"_s));
    EXPECT_FALSE(test::contentOf(plain.callDir + u"/Technical files/transcript.txt"_s).contains('.'));
}

TEST_F(JobRunTest, aRecordingThatIsGoneIsToldOf)
{
    QFile::remove(m_job.callDir + u'/' + m_job.audio);
    EXPECT_TRUE(
        test::sentenceOf([&] { run(m_job); }).startsWith(u"The recording is no longer in its folder"));
}

} // namespace engine
