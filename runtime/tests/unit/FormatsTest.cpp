#include "output/Formats.h"
#include "output/CallDirWriter.h"
#include "output/ViewerPage.h"

#include "Support.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<Line> lines()
{
    Segment first{0, 3200, 4500, std::vector<Word>{{u"good"_s, 3300, 3600}, {u"morning"_s, 3600, 4200}}};
    Segment silent{1, 5000, 6000, std::vector<Word>{}};
    Segment late{2, 3725000, 3727000, std::vector<Word>{{u"r&b"_s, 3725250, 3726000}}};
    return linesFrom({first, silent, late});
}

// The same with speakers and with the line in the middle emptied.
std::vector<Line> corrected()
{
    std::vector<Line> all = lines();
    all.insert(all.begin() + 1, Line{5000, 6000, {}, u""_s, {}});
    all[0].speaker = u"Anna <a>"_s;
    all[2].speaker = u"Борис"_s;
    return all;
}

Job finishedJob()
{
    Job job = test::sampleJob(u"A \"title\": \\ and more"_s);
    job.durationSeconds = 3727.9;
    job.language = u"en"_s;
    job.recogniser = u"PocketSphinx"_s;
    return job;
}

Transcript finished()
{
    return {lines(), u"One. Do it.\n"_s, Summary{{u"One."_s}, {u"Do it."_s}}, 3};
}

QJsonObject pageData(const Transcript &transcript)
{
    const QByteArray page = viewerPage(finishedJob(), transcript);
    const QByteArray start = "<script type=\"application/json\" id=\"transcript\">";
    const qsizetype from = page.indexOf(start) + start.size();
    return QJsonDocument::fromJson(page.mid(from, page.indexOf("</script>", from) - from)).object();
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

void writeCallDir(const Job &job, const Transcript &transcript)
{
    stageFiles(job.callDir, transcript.revision, callDirFiles(job, transcript));
    EXPECT_TRUE(publishFiles(job.callDir, transcript.revision));
    discardStaged(job.callDir);
}

} // namespace

TEST(Formats, transcriptHasATimeOnEveryLine)
{
    EXPECT_EQ(transcriptFile(lines()), "[00:00:03] good morning\n[01:02:05] r&b\n");
}

TEST(Formats, subtitles)
{
    EXPECT_EQ(subRipFile(lines()), "1\n00:00:03,300 --> 00:00:04,200\ngood morning\n\n"
                                   "2\n01:02:05,250 --> 01:02:06,000\nr&b\n\n");
    EXPECT_EQ(webVttFile(lines()), "WEBVTT\n\n00:00:03.300 --> 00:00:04.200\ngood morning\n\n"
                                   "01:02:05.250 --> 01:02:06.000\nr&amp;b\n\n");
}

TEST(Formats, subtitlesAreShortEnoughToRead)
{
    Segment segment{0, 0, 30000, std::vector<Word>{}};
    for (int i = 0; i < 100; ++i)
        segment.words->push_back({u"wonderful"_s, i * 300, i * 300 + 300});
    for (const QByteArray &line : subRipFile(linesFrom({segment})).split('\n'))
        EXPECT_LE(line.size(), 84);
}

TEST(Formats, segmentsForPrograms)
{
    const QJsonObject file = QJsonDocument::fromJson(segmentsFile(finishedJob(), finished())).object();
    EXPECT_EQ(file[u"version"].toInt(), 1);
    const QJsonArray list = file[u"segments"].toArray();
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list[1][u"index"].toInt(), 1);
    EXPECT_EQ(list[1][u"start"].toDouble(), 3725.0);
    EXPECT_EQ(list[0][u"text"].toString(), u"good morning"_s);
    EXPECT_EQ(list[0][u"words"][1][u"word"].toString(), u"morning"_s);
    EXPECT_EQ(list[0][u"words"][1][u"end"].toDouble(), 4.2);
}

TEST(Formats, summaryHasFrontMatterAndThreeParts)
{
    Job job = finishedJob();
    job.language = u"no"_s; // Norwegian, and without quotes YAML's word for false
    const QString text = QString::fromUtf8(summaryFile(job, finished()));
    EXPECT_TRUE(text.contains(u"\nlanguage: \"no\"\n"));
    ASSERT_TRUE(text.startsWith(u"---\n"));
    const qsizetype end = text.indexOf(u"\n---\n", 4);
    ASSERT_GT(end, 0);
    EXPECT_TRUE(text.contains(u"title: \"A \\\"title\\\": \\\\ and more\"\n"));
    EXPECT_TRUE(text.contains(u"duration: \"01:02:07\"\n"));
    EXPECT_TRUE(text.mid(end).contains(u"No text model was used"));
    EXPECT_TRUE(text.mid(end).contains(u"## Summary\n"));
    EXPECT_TRUE(text.mid(end).contains(u"## Tasks\n\n- [ ] Do it.\n"));
    EXPECT_TRUE(text.endsWith(u"## Full text\n\nOne. Do it.\n"));
}

TEST(Formats, aSummaryByATextModelSaysSoAndWhatItLacks)
{
    Transcript transcript = finished();
    transcript.summary->model = u"small:latest"_s;
    transcript.summary->missing = {remark(u"The part from %@ to %@ is missing."_s, {u"%@"_s, u"2"_s})};
    const QString text = QString::fromUtf8(summaryFile(finishedJob(), transcript));
    EXPECT_TRUE(text.contains(u"\nsummary: \"small:latest\"\n"));
    EXPECT_FALSE(text.contains(u"No text model was used"));
    EXPECT_TRUE(text.contains(u"“small:latest”"));
    EXPECT_TRUE(text.contains(u"The part from %@ to 2 is missing."));
}

TEST(Formats, speakersAreNamedAndEmptiedLinesLeftOut)
{
    EXPECT_EQ(transcriptFile(corrected()), "[00:00:03] Anna <a>: good morning\n[01:02:05] Борис: r&b\n");
    EXPECT_EQ(subRipFile(corrected()), subRipFile(lines()));
    EXPECT_TRUE(webVttFile(corrected()).contains("\n<v Anna &lt;a&gt;>good morning\n"));
    Transcript transcript = finished();
    transcript.lines = corrected();
    EXPECT_TRUE(summaryFile(finishedJob(), transcript).contains("\nspeakers: [\"Anna <a>\", \"Борис\"]\n"));
}

TEST(Formats, programsAndThePageCountEmptiedLines)
{
    Transcript transcript = finished();
    transcript.lines = corrected();
    const QJsonArray list =
        QJsonDocument::fromJson(segmentsFile(finishedJob(), transcript)).object()[u"segments"].toArray();
    const QJsonArray shown = pageData(transcript)[u"segments"].toArray();
    ASSERT_EQ(list.size(), 3);
    ASSERT_EQ(shown.size(), 3);
    EXPECT_EQ(list[1][u"text"].toString(u"missing"_s), QString());
    EXPECT_EQ(shown[1][u"text"].toString(u"missing"_s), QString());
    EXPECT_TRUE(list[1][u"speaker"].isNull());
    EXPECT_EQ(list[2][u"speaker"].toString(), u"Борис"_s);
    EXPECT_EQ(shown[2][u"words"][0].toDouble(), 3725.25);
}

TEST(ViewerPage, holdsWhatThePageReads)
{
    const QJsonObject data = pageData(finished());
    EXPECT_EQ(data[u"title"].toString(), finishedJob().title);
    EXPECT_EQ(data[u"language"].toString(), u"en"_s);
    EXPECT_EQ(data[u"recorded_at"].toString(), u"2025-03-14T10:22:33"_s);
    EXPECT_EQ(data[u"duration"].toDouble(), 3727.9);
    EXPECT_EQ(data[u"audio"].toString(), u"audio.m4a"_s);
    EXPECT_EQ(data[u"segments"][0][u"text"].toString(), u"good morning"_s);
    EXPECT_EQ(data[u"segments"][0][u"start"].toDouble(), 3.2);
    EXPECT_EQ(data[u"summary"][u"paragraphs"][0].toString(), u"- One."_s);
    EXPECT_EQ(data[u"summary"][u"tasks"][0].toString(), u"Do it."_s);
    Transcript plain = finished();
    plain.summary.reset();
    EXPECT_TRUE(pageData(plain)[u"summary"].isNull());
}

TEST(ViewerPage, nothingThatWasSaidCanEndItsScript)
{
    const QString hostile = u"</script><!-- @TUPPI_TRANSCRIPT@ \u2028\u2029 \U0001f600 \" \\ \u200f"_s;
    Transcript transcript = finished();
    transcript.lines[0].text = hostile;
    EXPECT_EQ(pageData(transcript)[u"segments"][0][u"text"].toString(), hostile);
    const QByteArray page = viewerPage(finishedJob(), transcript);
    EXPECT_EQ(page.count("</script>"), viewerPage(finishedJob(), finished()).count("</script>"));
    EXPECT_FALSE(page.contains("\u2028"));
}

TEST(CallDirWriter, writesEveryFileAndNothingElse)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    Transcript transcript = finished();
    writeCallDir(job, transcript);
    transcript.clean = u"Good morning!\n"_s;
    ++transcript.revision;
    writeCallDir(job, transcript); // over what is there
    EXPECT_EQ(entriesOf(home.path()),
              (QStringList{u"Summary.md"_s, u"Technical files"_s, u"Transcript.txt"_s}));
    EXPECT_EQ(entriesOf(home.file(u"Technical files"_s)),
              (QStringList{u"segments.json"_s, u"subtitles.srt"_s, u"subtitles.vtt"_s, u"transcript.txt"_s,
                           u"viewer.html"_s}));
    EXPECT_EQ(test::contentOf(home.file(u"Technical files/transcript.txt"_s)), "Good morning!\n");
}

TEST(CallDirWriter, withoutASummaryThereIsNoSummaryFile)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    Transcript transcript = finished();
    transcript.summary.reset();
    writeCallDir(job, transcript);
    EXPECT_FALSE(QFile::exists(home.file(u"Summary.md"_s)));
}

TEST(CallDirWriter, nothingMovesUntilAllIsWritten)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    writeCallDir(job, finished());
    Transcript transcript = finished();
    transcript.clean = u"Other.\n"_s;
    ++transcript.revision;
    stageFiles(job.callDir, transcript.revision, callDirFiles(job, transcript));
    EXPECT_EQ(test::contentOf(home.file(u"Technical files/transcript.txt"_s)), "One. Do it.\n");
    EXPECT_FALSE(publishFiles(job.callDir, transcript.revision + 1)) << "another revision";
    EXPECT_TRUE(publishFiles(job.callDir, transcript.revision));
    EXPECT_EQ(test::contentOf(home.file(u"Technical files/transcript.txt"_s)), "Other.\n");
    EXPECT_TRUE(publishFiles(job.callDir, transcript.revision)) << "again, as after a kill";
    discardStaged(job.callDir);
    EXPECT_EQ(entriesOf(home.path()),
              (QStringList{u"Summary.md"_s, u"Technical files"_s, u"Transcript.txt"_s}));
}

TEST(CallDirWriter, aFolderInTheWayIsFoundBeforeAnythingMoves)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    QDir().mkpath(home.file(u"Summary.md"_s));
    EXPECT_TRUE(test::sentenceOf([&] {
                    writeCallDir(job, finished());
                }).startsWith(u"“Summary.md” could not be written: a folder of that name"));
    EXPECT_EQ(entriesOf(home.path()), (QStringList{u"Summary.md"_s, u"Technical files"_s}));
    EXPECT_TRUE(entriesOf(home.file(u"Technical files"_s)).isEmpty());
}

TEST(CallDirWriter, aFolderThatWasThrownAwayStaysAway)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.file(u"gone"_s);
    EXPECT_TRUE(test::sentenceOf([&] {
                    writeCallDir(job, finished());
                }).startsWith(u"The transcript's folder is gone"));
    EXPECT_FALSE(QFile::exists(home.file(u"gone"_s)));
}

} // namespace engine
