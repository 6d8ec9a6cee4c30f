#pragma once

#include "settings/Tone.h"

#include <QJsonArray>
#include <QList>
#include <QString>

#include <optional>

namespace tuppi {

struct ToneText
{
    QString text;
    Tone tone = Tone::Quiet;

    bool operator==(const ToneText &) const = default;
};

/// The engine's check of its installation, as it is shown.
struct HealthReport
{
    ToneText summary;
    QList<ToneText> lines;  ///< one per part checked
};

/// The summary while a check runs.
ToneText HealthChecking();

/// `reply`: the list of checks, or nothing when the engine gave none, which is how a missing engine shows.
HealthReport ReportHealth(const std::optional<QJsonArray> &reply);

} // namespace tuppi
