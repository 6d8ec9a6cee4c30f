#pragma once

#include <QString>

namespace tuppi {

/// Title and text in one row of a terminal that is so many columns wide, the title cut where there is no room for it;
/// a few columns of it stay, however narrow the terminal. Counts as the locale does, which Qt makes one of UTF-8.
QString FittedLine(const QString &title, const QString &text, int columns);

} // namespace tuppi
