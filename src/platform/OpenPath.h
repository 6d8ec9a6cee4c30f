#pragma once

#include <QString>
#include <QUrl>

namespace tuppi {

/// Opens a file or a folder that exists with the program that the desktop has for it, and does not wait for
/// that. Nothing else is tried. False when the desktop has no way to open anything.
bool OpenPath(const QString &path);
/// The same for a page of the web.
bool OpenUrl(const QUrl &url);

} // namespace tuppi
