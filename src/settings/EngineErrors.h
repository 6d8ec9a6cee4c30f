#pragma once

#include <QString>

namespace tuppi {

/// Why the engine refused a folder, out of its standard error: as it stands, but for "Error: " in the engine's
/// languages.
QString LibraryFailureDetail(const QString &err);

/// Why the engine refused a model: the same, trimmed and looked up.
QString ModelFailureDetail(const QString &err);

} // namespace tuppi
