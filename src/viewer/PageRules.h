#pragma once

#include <QString>
#include <QUrl>

namespace tuppi {

/// Whether a viewer page may go there: to a viewer page, or to an empty one.
bool IsNavigationAllowed(const QUrl &url);

/// Whether a viewer page may load that: files inside its call dir, once every link in the path is resolved, and
/// what it holds in memory itself. `callDir` is canonical; without one no file is allowed. Reads the file system.
bool IsRequestAllowed(const QUrl &url, const QString &callDir);

} // namespace tuppi
