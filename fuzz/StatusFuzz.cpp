#include "Fuzz.h"

#include "engine/EngineReplies.h"
#include "list/Describe.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace tuppi;

/// A reply of the status query, up to the bar and the text of the row that it belongs to.
void readInput(const QByteArray &bytes)
{
    const std::optional<QJsonObject> status = ReadObject(bytes);
    if (!status)
        return;
    const QJsonObject latest = status->value("latest_job"_L1).toObject();
    QJsonObject row = latest;
    for (const QString &stage : {u"queued"_s, u"transcribing"_s, u"analyzing"_s, u"cleaning"_s, u"ready"_s, u"failed"_s}) {
        row.insert(u"status"_s, stage);
        const Description described = Describe(row, latest, {});
        require(std::isfinite(described.progress));
    }
}
