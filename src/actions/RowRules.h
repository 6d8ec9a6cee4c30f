#pragma once

#include <QJsonObject>
#include <QString>

namespace tuppi {

/// Whether a command of the row menu can be used on a row; an empty row and a local one allow none.
bool IsRowCommandAllowed(const QJsonObject &row, const QString &action);

/// The most characters that the engine takes in a title.
inline constexpr int longestTitle = 500;

} // namespace tuppi
