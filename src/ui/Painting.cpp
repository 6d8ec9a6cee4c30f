#include "ui/Painting.h"

#include "ui/Colours.h"
#include "ui/Symbols.h"

#include <QTextDocument>

#include <cmath>

namespace tuppi {

using namespace Qt::StringLiterals;

double deviceScale(const QPainter &painter)
{
    const QTransform &device = painter.deviceTransform();
    const double scale = std::sqrt(std::abs(device.determinant()));
    return scale > 0 ? scale : 1;
}

void drawSymbol(QPainter &painter, const QString &name, const QColor &colour, double size, const QRectF &rect)
{
    const QPixmap symbol = SymbolPixmap(name, colour, size, deviceScale(painter));
    if (symbol.isNull())
        return;
    const QSizeF drawn = symbol.deviceIndependentSize();
    painter.drawPixmap(rect.center() - QPointF(drawn.width() / 2, drawn.height() / 2), symbol);
}

void drawFocusRing(QPainter &painter, const QRectF &bounds, double radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Colours::focusRing, 2));
    painter.drawRoundedRect(bounds.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    painter.restore();
}

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? u"<qt>"_s + text.toHtmlEscaped() + u"</qt>"_s : text;
}

QString withoutMnemonic(const QString &text)
{
    return QString(text).replace(u'&', u"&&"_s);
}

QString onOneLine(const QString &text)
{
    QString line = text;
    for (QChar &c : line) {
        if (c == u'\n' || c == u'\r' || c == u'\t' || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return line;
}

} // namespace tuppi
