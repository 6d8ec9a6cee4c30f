#include "store/Job.h"

#include "Support.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

namespace engine {

TEST(HistoryEntry, aNewJobHasEveryFieldOfTheContract)
{
    const QJsonObject entry = QJsonDocument::fromJson(historyEntry(test::sampleJob())).object();
    for (const QStringView field :
         {u"id", u"status", u"title", u"call_dir", u"recorded_at", u"engine_choice", u"language"})
        EXPECT_TRUE(entry[field].isString()) << field.toString().toStdString();
    for (const QStringView field : {u"paused", u"hidden"})
        EXPECT_TRUE(entry[field].isBool()) << field.toString().toStdString();
    for (const QStringView field : {u"error", u"engine", u"completed_at", u"duration_seconds"})
        EXPECT_TRUE(entry[field].isNull()) << field.toString().toStdString();
}

TEST(HistoryEntry, aFinishedJobTellsHowItEnded)
{
    Job job = test::sampleJob();
    job.status = Status::failed.toString();
    job.error = u"Запис містить тишу"_s;
    job.durationSeconds = 61.5;
    job.completedAt = u"2025-03-14T10:30:00Z"_s;
    job.engine = u"whisper"_s;
    const QJsonObject entry = QJsonDocument::fromJson(historyEntry(job)).object();
    EXPECT_EQ(entry[u"status"].toString(), u"failed"_s);
    EXPECT_EQ(entry[u"error"].toString(), u"Запис містить тишу"_s);
    EXPECT_EQ(entry[u"duration_seconds"].toDouble(), 61.5);
    EXPECT_EQ(entry[u"completed_at"].toString(), u"2025-03-14T10:30:00Z"_s);
    EXPECT_EQ(entry[u"engine"].toString(), u"whisper"_s);
}

TEST(HistoryEntry, isOneLineWhateverTheTitle)
{
    EXPECT_FALSE(historyEntry(test::sampleJob(u"two\nlines \"quoted\" \u2028 🐈"_s)).contains('\n'));
}

TEST(JobId, isUniqueAndSafe)
{
    QSet<QString> seen;
    static const QRegularExpression form(u"^[0-9a-f-]+$"_s);
    for (int i = 0; i < 1000; ++i) {
        const QString id = newJobId();
        EXPECT_TRUE(form.match(id).hasMatch()) << id.toStdString();
        EXPECT_FALSE(seen.contains(id));
        seen.insert(id);
    }
}

TEST(Times, haveTheFormsOfTheContract)
{
    EXPECT_EQ(contractTime(QDateTime(QDate(2025, 3, 14), QTime(10, 22, 33))), u"2025-03-14T10:22:33"_s);
    static const QRegularExpression form(u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ$"_s);
    EXPECT_TRUE(form.match(contractNow()).hasMatch()) << contractNow().toStdString();
}

} // namespace engine
