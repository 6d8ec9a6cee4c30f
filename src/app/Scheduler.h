#pragma once

#include "app/JobsState.h"

#include <QString>

namespace tuppi {

/// True while a start is in flight or a job is under way, paused or not.
bool SomethingActive(const JobsState &jobs);

/// True while a start is in flight or another job than `id` is under way and not paused.
bool BusyExcept(const JobsState &jobs, const QString &id);

/// True while a start is in flight or a job is under way that is not paused.
bool IsWorkUnderWay(const JobsState &jobs);

/// True when the first waiting file may be handed to the engine now.
bool MayStartNext(const JobsState &jobs);

} // namespace tuppi
