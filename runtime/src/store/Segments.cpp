#include "store/Segments.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace engine {

void planSegments(Database &database, qint64 job, const std::vector<Segment> &segments)
{
    database.run(u"DELETE FROM segments WHERE job = ?"_s, {job});
    for (const Segment &segment : segments)
        database.run(u"INSERT INTO segments (job, number, start_ms, end_ms) VALUES (?, ?, ?, ?)"_s,
                     {job, segment.number, segment.startMs, segment.endMs});
}

void beginSegment(Database &database, qint64 job, int number)
{
    database.run(u"UPDATE segments SET attempts = attempts + 1 WHERE job = ? AND number = ?"_s,
                 {job, number});
}

void keepSegment(Database &database, qint64 job, int number, const std::vector<Word> &words)
{
    database.run(u"UPDATE segments SET words = ? WHERE job = ? AND number = ?"_s,
                 {wordsToBytes(words), job, number});
}

std::vector<Segment> segmentsOf(Database &database, qint64 job)
{
    QSqlQuery query = database.run(
        u"SELECT number, start_ms, end_ms, words FROM segments WHERE job = ? ORDER BY number"_s, {job});
    std::vector<Segment> segments;
    while (query.next()) {
        Segment segment;
        segment.number = query.value(0).toInt();
        segment.startMs = query.value(1).toLongLong();
        segment.endMs = query.value(2).toLongLong();
        if (const QVariant words = query.value(3); !words.isNull())
            segment.words = wordsFromBytes(words.toByteArray());
        segments.push_back(std::move(segment));
    }
    return segments;
}

int keptCount(Database &database, qint64 job)
{
    return database.value(u"SELECT count(words) FROM segments WHERE job = ?"_s, {job}).toInt();
}

QByteArray wordsToBytes(const std::vector<Word> &words)
{
    QJsonArray list;
    for (const Word &word : words)
        list.append(QJsonArray{word.text, word.startMs, word.endMs});
    return QJsonDocument(list).toJson(QJsonDocument::Compact);
}

std::vector<Word> wordsFromBytes(const QByteArray &bytes)
{
    const QJsonArray list = QJsonDocument::fromJson(bytes).array();
    std::vector<Word> words;
    words.reserve(size_t(list.size()));
    for (const QJsonValue &item : list)
        words.push_back({item[0].toString(), item[1].toInteger(), item[2].toInteger()});
    return words;
}

} // namespace engine
