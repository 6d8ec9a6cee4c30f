#pragma once

#include <QColor>
#include <QPainter>

namespace tuppi {

/// Device pixels per logical pixel of what the painter draws on, a scaled grab included.
double deviceScale(const QPainter &painter);

/// Draws a symbol centred in a rectangle; draws nothing when there is no such symbol.
void drawSymbol(QPainter &painter, const QString &name, const QColor &colour, double size,
                const QRectF &rect);

/// The ring of a focused control, along the inside of its bounds. The control draws itself within focusInset
/// of them meanwhile, so that the ring stands clear of any fill and border.
void drawFocusRing(QPainter &painter, const QRectF &bounds, double radius);
inline constexpr double focusInset = 3.5;

/// A text as a tool tip that shows it as it stands: a file name may look like markup.
QString plainToolTip(const QString &text);

/// A text as the title of a button or a menu's command that shows it as it stands: an ampersand is no key there.
QString withoutMnemonic(const QString &text);

/// The text on one line: line breaks, which a file name may hold, become blanks.
QString onOneLine(const QString &text);

} // namespace tuppi
