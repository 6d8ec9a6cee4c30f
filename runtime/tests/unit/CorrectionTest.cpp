#include "correct/Correction.h"

#include "correct/FilesLock.h"
#include "correct/MovedFolders.h"
#include "output/CallDirWriter.h"
#include "store/Jobs.h"
#include "store/Segments.h"
#include "store/Settings.h"
#include "store/Transcripts.h"

#include "Support.h"

#include <QDir>
#include <QStringEncoder>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// A job that is ready, with two lines, and whose files were written by hand in this test alone.
class CorrectionTest : public testing::Test
{
protected:
    CorrectionTest()
        : m_database(m_home.paths())
    {
        m_job = test::sampleJob();
        m_job.callDir = m_home.file(u"call"_s);
        QDir().mkpath(m_job.callDir);
        m_job = test::addJob(m_database, m_job);
        m_job.status = Status::ready.toString();
        Transaction transaction(m_database);
        updateJob(m_database, m_job);
        planSegments(m_database, m_job.seq, {{0, 0, 400, {}}, {1, 5000, 5400, {}}});
        keepSegment(m_database, m_job.seq, 0, {{u"one"_s, 0, 200}, {u"two"_s, 200, 400}});
        keepSegment(m_database, m_job.seq, 1, {{u"three"_s, 5000, 5200}, {u"four"_s, 5200, 5400}});
        transaction.commit();
    }

    void nameSpeaker(const QString &name)
    {
        correct(m_database, m_job.id,
                [&](Correction &correction) { correction.transcript.lines[0].speaker = name; });
    }

    QString path(const QString &name) const { return m_job.callDir + u'/' + name; }
    QByteArray file(const QString &name) const { return test::contentOf(path(name)); }
    Transcript kept() { return *keptTranscript(m_database, m_job.seq); }
    QStringList entries() const
    {
        return QDir(m_job.callDir)
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    const QStringList m_expected{u"Summary.md"_s, u"Technical files"_s, u"Transcript.txt"_s};

    test::Home m_home;
    Database m_database;
    Job m_job;
};

} // namespace

TEST_F(CorrectionTest, aTranscriptOfAnOlderStoreIsMadeOfItsSegments)
{
    EXPECT_FALSE(keptTranscript(m_database, m_job.seq));
    nameSpeaker(u"Anna"_s);
    EXPECT_EQ(kept().lines.size(), 2U);
    EXPECT_EQ(kept().lines[0].speaker, u"Anna"_s);
    EXPECT_EQ(kept().clean, u"One two.\n\nThree four.\n"_s);
    EXPECT_EQ(kept().revision, 1);
    EXPECT_TRUE(kept().summary);
    EXPECT_TRUE(unwrittenJobs(m_database).empty());
    EXPECT_EQ(entries(), m_expected);
    EXPECT_EQ(file(u"Transcript.txt"_s), "[00:00:00] Anna: one two\n[00:00:05] three four\n");
    EXPECT_EQ(segmentsOf(m_database, m_job.seq)[0].text(), u"one two"_s);
}

TEST_F(CorrectionTest, whatChangesNothingWritesNothing)
{
    nameSpeaker(u"Anna"_s);
    nameSpeaker(u"Anna"_s);
    EXPECT_EQ(kept().revision, 1);
}

TEST_F(CorrectionTest, aRefusedChangeLeavesEverything)
{
    nameSpeaker(u"Anna"_s);
    const QByteArray before = file(u"Transcript.txt"_s);
    EXPECT_EQ(test::sentenceOf([&] {
                  correct(m_database, m_job.id, [](Correction &correction) {
                      correction.transcript.lines.clear();
                      throw Failure(u"No."_s);
                  });
              }),
              u"No."_s);
    EXPECT_EQ(kept().lines.size(), 2U);
    EXPECT_EQ(file(u"Transcript.txt"_s), before);
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, aCorrectionWhoseFilesAreStuckIsNotLostWithTheNextOne)
{
    nameSpeaker(u"Anna"_s);
    const QByteArray before = file(u"Transcript.txt"_s);
    nameSpeaker(u"Boris"_s);
    // As if renaming had failed: the new text waits, and something that cannot take its place with it.
    const QByteArray after = file(u"Transcript.txt"_s);
    test::write(path(u"Transcript.txt"_s), before);
    noteWritten(m_database, m_job.seq, 1);
    QDir().mkpath(path(u".tuppi-revision-2"_s));
    QDir().mkpath(path(u"stuck"_s));
    test::write(path(u".tuppi-revision-2/stuck"_s), "stuck");
    const auto correctText = [&] {
        correct(m_database, m_job.id,
                [](Correction &correction) { correction.transcript.lines[1].speaker = u"Cleo"_s; });
    };
    const QString refusal = test::sentenceOf(correctText);
    EXPECT_TRUE(refusal.startsWith(u"The last correction is not in the files yet")) << refusal.toStdString();
    EXPECT_TRUE(refusal.contains(u"“stuck” could not be written")) << refusal.toStdString();
    EXPECT_EQ(kept().revision, 2);
    EXPECT_EQ(file(u"Transcript.txt"_s), before);

    QDir().rmdir(path(u"stuck"_s));
    test::write(path(u".tuppi-revision-2/Transcript.txt"_s), after);
    EXPECT_EQ(test::sentenceOf(correctText), u"no failure"_s);
    EXPECT_EQ(file(u"Transcript.txt"_s), "[00:00:00] Boris: one two\n[00:00:05] Cleo: three four\n");
    EXPECT_TRUE(unwrittenJobs(m_database).empty());
}

TEST_F(CorrectionTest, filesThatCannotBeWrittenChangeNothing)
{
    nameSpeaker(u"Anna"_s);
    QFile::remove(path(u"Transcript.txt"_s));
    QDir().mkpath(path(u"Transcript.txt"_s));
    EXPECT_TRUE(test::sentenceOf([&] {
                    nameSpeaker(u"Boris"_s);
                }).contains(u"“Transcript.txt” could not be written"));
    EXPECT_EQ(kept().lines[0].speaker, u"Anna"_s);
    EXPECT_EQ(kept().revision, 1);
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, onlyWhatIsReadyCanBeCorrected)
{
    EXPECT_TRUE(test::sentenceOf([&] {
                    correct(m_database, u"nope"_s, [](Correction &) {});
                }).startsWith(u"There is no transcription"));
    const Job queued = test::addJob(m_database, test::sampleJob(u"Queued"_s));
    EXPECT_EQ(test::sentenceOf([&] { correct(m_database, queued.id, [](Correction &) {}); }),
              u"“Queued” is not transcribed yet."_s);
    QDir(m_job.callDir).removeRecursively();
    EXPECT_TRUE(
        test::sentenceOf([&] { nameSpeaker(u"Anna"_s); }).startsWith(u"The transcript's folder is gone"));
    EXPECT_FALSE(QFile::exists(m_job.callDir));
}

// As a program that was killed between the commit and the renames leaves it.
TEST_F(CorrectionTest, anUnfinishedChangeIsFinishedFromWhatWasStaged)
{
    nameSpeaker(u"Anna"_s);
    Transcript transcript = kept();
    transcript.lines[0].speaker = u"Boris"_s;
    ++transcript.revision;
    stageFiles(m_job.callDir, transcript.revision, callDirFiles(m_job, transcript));
    Transaction transaction(m_database);
    keepTranscript(m_database, m_job.seq, transcript, kept().lines);
    transaction.commit();
    EXPECT_EQ(unwrittenJobs(m_database), std::vector<qint64>{m_job.seq});
    EXPECT_TRUE(file(u"Transcript.txt"_s).contains("Anna"));
    finishCorrections(m_database);
    EXPECT_TRUE(file(u"Transcript.txt"_s).contains("Boris"));
    EXPECT_TRUE(unwrittenJobs(m_database).empty());
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, anUnfinishedChangeIsFinishedFromTheStoreWhereNothingIsStaged)
{
    nameSpeaker(u"Anna"_s);
    Transcript transcript = kept();
    transcript.lines[0].speaker = u"Boris"_s;
    ++transcript.revision;
    Transaction transaction(m_database);
    keepTranscript(m_database, m_job.seq, transcript, kept().lines);
    transaction.commit();
    {
        // Another program is still at it.
        const FilesLock lock(m_home.paths(), FilesLock::Patience::Wait);
        finishCorrections(m_database);
        EXPECT_TRUE(file(u"Transcript.txt"_s).contains("Anna"));
    }
    finishCorrections(m_database);
    EXPECT_TRUE(file(u"Transcript.txt"_s).contains("Boris"));
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, whatWasStagedAndNeverCommittedIsForgotten)
{
    nameSpeaker(u"Anna"_s);
    Transcript transcript = kept();
    transcript.lines[0].text = u"never"_s;
    stageFiles(m_job.callDir, 2, callDirFiles(m_job, transcript));
    finishCorrections(m_database);
    EXPECT_FALSE(file(u"Transcript.txt"_s).contains("never"));
    nameSpeaker(u"Boris"_s);
    EXPECT_EQ(file(u"Transcript.txt"_s), "[00:00:00] Boris: one two\n[00:00:05] three four\n");
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, aFolderThatIsAwayIsFinishedWhenItIsBack)
{
    nameSpeaker(u"Anna"_s);
    Transcript transcript = kept();
    transcript.lines[0].speaker = u"Boris"_s;
    ++transcript.revision;
    Transaction transaction(m_database);
    keepTranscript(m_database, m_job.seq, transcript, kept().lines);
    transaction.commit();
    QDir().rename(m_job.callDir, m_job.callDir + u" away"_s);
    finishCorrections(m_database);
    EXPECT_FALSE(QFile::exists(m_job.callDir));
    QDir().rename(m_job.callDir + u" away"_s, m_job.callDir);
    finishCorrections(m_database);
    EXPECT_TRUE(file(u"Transcript.txt"_s).contains("Boris"));
}

TEST_F(CorrectionTest, aByteOrderMarkIsKept)
{
    nameSpeaker(u"Anna"_s);
    test::write(path(u"Technical files/transcript.txt"_s), "\xef\xbb\xbfMy own text.\n");
    nameSpeaker(u"Boris"_s);
    EXPECT_EQ(file(u"Technical files/transcript.txt"_s), "\xef\xbb\xbfMy own text.\n");
}

TEST_F(CorrectionTest, aTextInAnotherEncodingIsNotWrittenOver)
{
    nameSpeaker(u"Anna"_s);
    for (const QString &name : {u"Summary.md"_s, u"Transcript.txt"_s, u"Technical files/transcript.txt"_s}) {
        const QByteArray before = file(name);
        for (const QByteArray &theirs : {"Besprochen f\xfcr M\xe4rz.\n"_ba, "\xff\xfe{"_ba}) {
            test::write(path(name), theirs);
            EXPECT_EQ(test::sentenceOf([&] { nameSpeaker(u"Boris"_s); }),
                      u"“"_s + name + u"” is not written in UTF-8. Save it in UTF-8, or remove it."_s);
            EXPECT_EQ(file(name), theirs);
        }
        test::write(path(name), before);
    }
    EXPECT_EQ(kept().lines[0].speaker, u"Anna"_s);
    EXPECT_EQ(kept().revision, 1);
    EXPECT_EQ(entries(), m_expected);
}

TEST_F(CorrectionTest, aTextThatCannotBeReadIsNotWrittenOver)
{
    nameSpeaker(u"Anna"_s);
    for (const QString &name : {u"Summary.md"_s, u"Transcript.txt"_s, u"Technical files/transcript.txt"_s}) {
        const QString aside = path(name) + u" aside"_s;
        QFile::rename(path(name), aside);
        // Root may read everything, but a link that leads to itself.
        ASSERT_TRUE(QFile::link(path(name), path(name)));
        EXPECT_TRUE(test::sentenceOf([&] {
                        nameSpeaker(u"Boris"_s);
                    }).startsWith(u"“"_s + name + u"” could not be read: "_s));
        ASSERT_TRUE(QFile::remove(path(name)));
        QFile::rename(aside, path(name));
    }
    EXPECT_EQ(kept().lines[0].speaker, u"Anna"_s);
    EXPECT_EQ(entries(), m_expected);
}

// A byte order mark, which tells the encoding, and the ends of rows on Windows.
TEST_F(CorrectionTest, whatEditorsMakeOfATextStays)
{
    const auto edit = [&](const QString &name, QStringConverter::Encoding encoding, const QString &from,
                          const QString &to) {
        QString text = QString::fromUtf8(file(name)).replace(from, to).replace(u'\n', u"\r\n"_s);
        EXPECT_TRUE(text.contains(to));
        test::write(path(name), QStringEncoder(encoding, QStringConverter::Flag::WriteBom)(text));
    };
    for (const auto encoding : {QStringConverter::Utf8, QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        QFile::remove(path(u"Summary.md"_s));
        QFile::remove(path(u"Transcript.txt"_s));
        nameSpeaker(u"Anna"_s);
        nameSpeaker(u"Boris"_s);
        edit(u"Summary.md"_s, encoding, u"None were found."_s, u"- [x] Call the bank"_s);
        edit(u"Transcript.txt"_s, encoding, u"four"_s, u"four (laughs)"_s);
        correct(m_database, m_job.id, [](Correction &correction) {
            correction.transcript.lines[0].text = u"one six"_s;
            correction.carriedOver = [](QString text) { return text.replace(u"two"_s, u"six"_s); };
        });
        nameSpeaker(u"Clara"_s);
        EXPECT_TRUE(file(u"Summary.md"_s).startsWith("\xef\xbb\xbf---\r\n"));
        EXPECT_TRUE(file(u"Summary.md"_s).contains("\r\n- [x] Call the bank\r\n"));
        EXPECT_TRUE(file(u"Summary.md"_s).contains("\r\nspeakers: [\"Clara\"]\r\n"));
        EXPECT_TRUE(file(u"Summary.md"_s).endsWith("\r\nOne six.\r\n\r\nThree four.\r\n"));
        EXPECT_EQ(file(u"Transcript.txt"_s),
                  "\xef\xbb\xbf[00:00:00] Clara: one six\r\n[00:00:05] three four (laughs)\r\n");
        correct(m_database, m_job.id, [](Correction &correction) {
            const auto [first, second] = cut(correction.transcript.lines[0], 3);
            correction.transcript.lines = {first, second, correction.transcript.lines[1]};
        });
        EXPECT_EQ(file(u"Transcript.txt"_s), "\xef\xbb\xbf[00:00:00] Clara: one\r\n[00:00:00] Clara: six\r\n"
                                             "[00:00:05] three four (laughs)\r\n");
        correct(m_database, m_job.id, [](Correction &correction) {
            std::vector<Line> &lines = correction.transcript.lines;
            lines = {withText(joined(lines[0], lines[1]), u"one two"_s), lines[2]};
            correction.carriedOver = [](QString text) { return text.replace(u"six"_s, u"two"_s); };
        });
    }
}

TEST_F(CorrectionTest, whatTheUserWroteIntoTheFilesStays)
{
    nameSpeaker(u"Anna"_s);
    const auto edit = [&](const QString &name, const QByteArray &from, const QByteArray &to) {
        const QByteArray changed = file(name).replace(from, to);
        EXPECT_NE(changed, file(name)) << name.toStdString();
        test::write(path(name), changed);
    };
    edit(u"Summary.md"_s, "None were found.\n", "- [x] Call the bank\n");
    edit(u"Technical files/transcript.txt"_s, "Three four.", "Three, four!");
    edit(u"Transcript.txt"_s, "three four", "three four (laughs)");
    nameSpeaker(u"Boris"_s);
    EXPECT_TRUE(file(u"Summary.md"_s).contains("- [x] Call the bank\n"));
    EXPECT_TRUE(file(u"Summary.md"_s).contains("speakers: [\"Boris\"]"));
    EXPECT_EQ(file(u"Transcript.txt"_s), "[00:00:00] Boris: one two\n[00:00:05] three four (laughs)\n");
    EXPECT_EQ(file(u"Technical files/transcript.txt"_s), "One two.\n\nThree, four!\n");
    EXPECT_EQ(kept().clean, u"One two.\n\nThree, four!\n"_s);
    EXPECT_TRUE(file(u"Summary.md"_s).endsWith("## Full text\n\nOne two.\n\nThree, four!\n"));

    correct(m_database, m_job.id, [](Correction &correction) {
        const auto [first, second] = cut(correction.transcript.lines[0], 3);
        correction.transcript.lines = {first, second, correction.transcript.lines[1]};
        correction.job.title = u"Another"_s;
    });
    EXPECT_EQ(file(u"Transcript.txt"_s),
              "[00:00:00] Boris: one\n[00:00:00] Boris: two\n[00:00:05] three four (laughs)\n");
    EXPECT_TRUE(file(u"Summary.md"_s).contains("title: \"Another\"\n"));
    EXPECT_TRUE(file(u"Summary.md"_s).contains("\n# Another\n"));
    EXPECT_TRUE(file(u"Summary.md"_s).contains("- [x] Call the bank\n"));
}

namespace {

// What was done by hand to the call dir of a finished transcript, in the library in use or beside it.
struct MovedByHand
{
    const char *comment;
    const char *from;
    const char *to;
    bool changed; // its segments, since
    bool found;
};

const MovedByHand movedByHand[] = {
    {"renamed", "library/call", "library/Talk with Ana", false, true},
    {"moved along to a new library", "before/call", "library/call", false, true},
    {"still in its place, beside a copy", "library/call", "", false, false},
    {"moved out of the library", "library/call", "elsewhere", false, false},
    {"another transcript", "library/call", "library/Talk with Ana", true, false},
};

} // namespace

TEST_F(CorrectionTest, callDirsThatWereRenamedAreFound)
{
    nameSpeaker(u"Anna"_s); // gives it all its files
    changeLibrary(m_database, m_home.file(u"library"_s));
    QString place = m_job.callDir;
    for (const MovedByHand &row : movedByHand) {
        SCOPED_TRACE(row.comment);
        const QString from = m_home.file(QString::fromUtf8(row.from));
        QDir().mkpath(QFileInfo(from).path());
        ASSERT_TRUE(place == from || QDir().rename(place, from));
        changeJob(m_database, m_job.id, [&](Job &job) { job.callDir = from; });
        place = from;
        const QString segments = u"/Technical files/segments.json"_s;
        if (row.to[0] != '\0') {
            place = m_home.file(QString::fromUtf8(row.to));
            ASSERT_TRUE(QDir().rename(from, place));
        } else {
            QDir().mkpath(m_home.file(u"library/copy/Technical files"_s));
            ASSERT_TRUE(QFile::copy(from + segments, m_home.file(u"library/copy"_s) + segments));
        }
        if (row.changed)
            test::write(place + segments, test::contentOf(place + segments).replace("three", "other"));
        findMovedFolders(m_database);
        EXPECT_EQ(jobById(m_database, m_job.id)->callDir, row.found ? place : from);
        QDir(m_home.file(u"library/copy"_s)).removeRecursively();
    }
}

TEST_F(CorrectionTest, aCallDirIsFoundForOneTranscriptOnly)
{
    nameSpeaker(u"Anna"_s);
    changeLibrary(m_database, m_home.file(u"library"_s));
    Job twin = m_job;
    twin.id = newJobId();
    twin.callDir = m_home.file(u"library/twin"_s);
    twin = test::addJob(m_database, twin);
    Transaction transaction(m_database);
    keepTranscript(m_database, twin.seq, kept());
    transaction.commit();
    ASSERT_TRUE(QDir().rename(m_job.callDir, m_home.file(u"library/renamed"_s)));
    findMovedFolders(m_database);
    EXPECT_EQ(jobById(m_database, m_job.id)->callDir, m_home.file(u"library/renamed"_s));
    EXPECT_EQ(jobById(m_database, twin.id)->callDir, twin.callDir);
}

} // namespace engine
