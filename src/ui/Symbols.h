#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace tuppi {

/// A symbol of the program's own set in one colour, drawn for a device pixel ratio so that no pixel is
/// scaled. The size is the height of the square in logical pixels. Without such a symbol: a warning and an
/// empty pixmap.
QPixmap SymbolPixmap(const QString &name, const QColor &colour, double size, double devicePixelRatio);

} // namespace tuppi
