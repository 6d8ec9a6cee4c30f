#pragma once

#include <QSet>
#include <QStringList>

#include <chrono>
#include <functional>

namespace tuppi {

/// Those of the files that are no longer there. A disk that does not answer (a network drive that died) holds up whoever
/// asks it: this waits no longer than `patience`, and what is not known by then is taken to be there.
QSet<QString> GoneFiles(const QStringList &paths, std::chrono::milliseconds patience,
                        const std::function<bool(const QString &path)> &exists);
QSet<QString> GoneFiles(const QStringList &paths);

} // namespace tuppi
