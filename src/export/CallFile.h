#pragma once

#include <QString>

namespace tuppi {

/// Where a file that the engine writes under `name` stands in a call dir, in either of its two layouts: all
/// files directly inside it, or most of them in "Technical files" and two at the top under names for people.
/// Whether the file exists is not asked.
QString CallFile(const QString &callDir, const QString &name);

} // namespace tuppi
