#pragma once

#include <QFont>

#include <thread>

namespace tuppi {

/// Reads the computer's list of fonts on a thread of its own, while the application object comes up: the first
/// text on the screen would wait for it otherwise.
std::jthread readFontsAhead();

/// The system's font at a size in logical pixels and a weight. Qt draws whole pixels only, so half a pixel is
/// rounded up here, where it shows, and not when the font is looked up.
QFont System(double size, QFont::Weight weight = QFont::Normal);

/// The same in a rounded design: the first rounded family that is installed, else the system's own.
QFont Rounded(double size, QFont::Weight weight = QFont::Normal);

/// The family that Rounded() uses out of those installed; empty when there is none.
QString RoundedFamily(const QStringList &installed);

} // namespace tuppi
