#include "output/Formats.h"
#include "output/CallDirWriter.h"

#include "Support.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<Segment> segments()
{
    Segment first{0, 3200, 4500, std::vector<Word>{{u"good"_s, 3300, 3600}, {u"morning"_s, 3600, 4200}}};
    Segment silent{1, 5000, 6000, std::vector<Word>{}};
    Segment late{2, 3725000, 3727000, std::vector<Word>{{u"r&b"_s, 3725250, 3726000}}};
    return {first, silent, late};
}

Job finishedJob()
{
    Job job = test::sampleJob(u"A \"title\": \\ and more"_s);
    job.durationSeconds = 3727.9;
    job.language = u"en"_s;
    job.recogniser = u"PocketSphinx"_s;
    return job;
}

} // namespace

TEST(Formats, transcriptHasATimeOnEveryLine)
{
    EXPECT_EQ(transcriptFile(segments()), "[00:00:03] good morning\n[01:02:05] r&b\n");
}

TEST(Formats, subtitles)
{
    EXPECT_EQ(subRipFile(segments()), "1\n00:00:03,300 --> 00:00:04,200\ngood morning\n\n"
                                      "2\n01:02:05,250 --> 01:02:06,000\nr&b\n\n");
    EXPECT_EQ(webVttFile(segments()), "WEBVTT\n\n00:00:03.300 --> 00:00:04.200\ngood morning\n\n"
                                      "01:02:05.250 --> 01:02:06.000\nr&amp;b\n\n");
}

TEST(Formats, subtitlesAreShortEnoughToRead)
{
    Segment long_{0, 0, 30000, std::vector<Word>{}};
    for (int i = 0; i < 100; ++i)
        long_.words->push_back({u"wonderful"_s, i * 300, i * 300 + 300});
    for (const QByteArray &line : subRipFile({long_}).split('\n'))
        EXPECT_LE(line.size(), 84);
}

TEST(Formats, segmentsForPrograms)
{
    const QJsonObject file = QJsonDocument::fromJson(segmentsFile(finishedJob(), segments())).object();
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
    const QString text =
        QString::fromUtf8(summaryFile(finishedJob(), {{u"One."_s}, {u"Do it."_s}}, u"One. Do it.\n"_s));
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

TEST(CallDirWriter, writesEveryFileAndNothingElse)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    writeCallDir(job, segments(), u"Good morning.\n"_s, Summary{});
    writeCallDir(job, segments(), u"Good morning!\n"_s, Summary{}); // over what is there
    EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{u"Summary.md"_s, u"Technical files"_s, u"Transcript.txt"_s}));
    EXPECT_EQ(QDir(home.file(u"Technical files"_s))
                  .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{u"segments.json"_s, u"subtitles.srt"_s, u"subtitles.vtt"_s, u"transcript.txt"_s}));
    EXPECT_EQ(test::contentOf(home.file(u"Technical files/transcript.txt"_s)), "Good morning!\n");
}

TEST(CallDirWriter, withoutASummaryThereIsNoSummaryFile)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.path();
    writeCallDir(job, segments(), u"good morning\n"_s, std::nullopt);
    EXPECT_FALSE(QFile::exists(home.file(u"Summary.md"_s)));
}

TEST(CallDirWriter, aFolderThatWasThrownAwayStaysAway)
{
    const test::Home home;
    Job job = finishedJob();
    job.callDir = home.file(u"gone"_s);
    EXPECT_TRUE(test::sentenceOf([&] {
                    writeCallDir(job, segments(), {}, std::nullopt);
                }).startsWith(u"The transcript's folder is gone"));
    EXPECT_FALSE(QFile::exists(home.file(u"gone"_s)));
}

} // namespace engine
