#include "Samples.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tuppi::bench {

using namespace Qt::StringLiterals;

QByteArray historyReply(int jobs, int variant)
{
    const QStringList resting{u"ready"_s, u"ready"_s, u"ready"_s, u"failed"_s, u"cancelled"_s};
    QJsonArray history;
    for (int i = 0; i < jobs; ++i) {
        const bool changed = variant != 0 && i == jobs / 2;
        const QString title = u"Interview with the director of the school, part %1"_s.arg(i);
        history.append(QJsonObject{
            {u"id"_s, u"20250314-102233-%1"_s.arg(i, 6, 10, '0'_L1)},
            {u"status"_s, i == 0 ? u"transcribing"_s : resting.at(i % resting.size())},
            {u"paused"_s, false},
            {u"hidden"_s, i % 50 == 49},
            {u"title"_s, changed ? title + u" (%1)"_s.arg(variant) : title},
            {u"call_dir"_s, u"/home/somebody/Documents/CallsRawFiles/2025-03-14 10-22 "_s + title},
            {u"error"_s, i % resting.size() == 3 ? QJsonValue(u"Запис містить тишу"_s) : QJsonValue()},
            {u"recorded_at"_s, u"2025-03-14T10:22:33"_s},
            {u"duration_seconds"_s, 60 + i % 5000},
            {u"engine"_s, i % 2 == 0 ? u"whisper"_s : u"parakeet"_s},
            {u"engine_choice"_s, u"auto"_s},
            {u"language"_s, i % 3 == 0 ? u"uk"_s : u"en"_s},
            {u"completed_at"_s, u"2025-03-14T10:52:33"_s}});
    }
    return QJsonDocument(history).toJson(QJsonDocument::Compact);
}

} // namespace tuppi::bench
