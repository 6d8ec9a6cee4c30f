#pragma once

#include <QString>

namespace tuppi {

/// An engine's error text without "Error: " in the engine's languages, wherever it stands; else as it is.
QString WithoutErrorPrefixes(const QString &err);

/// The line of it that is shown: the last one, trimmed and looked up.
QString FailureDetail(const QString &err);

/// Why the engine refused a model: the whole text, trimmed and looked up.
QString ModelFailureDetail(const QString &err);

} // namespace tuppi
