#pragma once

#include <QString>

namespace tuppi {

/// True for the statuses of a job that is under way (and may be paused).
bool IsActiveStage(const QString &status);

} // namespace tuppi
