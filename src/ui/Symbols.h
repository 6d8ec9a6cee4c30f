#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

namespace tuppi {

/// A symbol of the program's own set in one colour, drawn for a device pixel ratio so that no pixel is
/// scaled. The size is the height of the square in logical pixels. Without such a symbol: a warning and an
/// empty pixmap.
QPixmap SymbolPixmap(const QString &name, const QColor &colour, double size, double devicePixelRatio);

/// The same as an icon that draws itself anew at whatever size and ratio it is asked for; dimmed when
/// disabled. Without such a symbol: a warning and an empty icon.
QIcon SymbolIcon(const QString &name, const QColor &colour, double size);

} // namespace tuppi
