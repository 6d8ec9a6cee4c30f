#include "store/Job.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

} // namespace

bool Job::unfinished() const
{
    return status == Status::queued || status == Status::transcribing || status == Status::cleaning ||
           status == Status::analyzing;
}

QByteArray historyEntry(const Job &job)
{
    QJsonObject entry;
    entry[u"id"] = job.id;
    entry[u"status"] = job.status;
    entry[u"paused"] = job.paused;
    entry[u"hidden"] = job.hidden;
    entry[u"title"] = job.title;
    entry[u"call_dir"] = job.callDir;
    entry[u"error"] = textOrNull(job.error);
    entry[u"recorded_at"] = textOrNull(job.recordedAt);
    entry[u"duration_seconds"] = job.durationSeconds ? QJsonValue(*job.durationSeconds) : QJsonValue();
    entry[u"engine"] = textOrNull(job.engine);
    entry[u"engine_choice"] = job.engineChoice;
    entry[u"language"] = job.language;
    entry[u"completed_at"] = textOrNull(job.completedAt);
    return QJsonDocument(entry).toJson(QJsonDocument::Compact);
}

QString newJobId()
{
    const quint64 random = QRandomGenerator::system()->generate64();
    return u"%1-%2"_s.arg(QDateTime::currentMSecsSinceEpoch(), 12, 16, QChar(u'0'))
        .arg(random, 16, 16, QChar(u'0'));
}

QString contractTime(const QDateTime &time)
{
    return time.toLocalTime().toString(u"yyyy-MM-ddTHH:mm:ss"_s);
}

QString contractNow()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
}

} // namespace engine
