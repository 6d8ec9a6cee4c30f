#pragma once

#include "engine/EngineReplies.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace tuppi {

/// A row's detail line, and its progress: -2 for no bar, another negative value for a running bar of unknown
/// amount, 0 and above for a fraction (not clamped at 1).
struct Description
{
    QString text;
    double progress = -2;
};

/// `customModels`: the user's own speech models, each with "id" and "name".
Description Describe(const QJsonObject &row, const std::optional<QJsonObject> &latestJob, const QJsonArray &customModels);

/// What the summary line is made of.
struct SummaryInput
{
    QString transientStatus;  ///< a short-lived message still to be shown, else empty
    bool loaded = false;
    bool engineBroken = false;
    qsizetype rowCount = 0;
    RowCounts counts;
    qsizetype waiting = 0;
};
QString SummaryLine(const SummaryInput &input);

} // namespace tuppi
