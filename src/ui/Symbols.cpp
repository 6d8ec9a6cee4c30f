#include "ui/Symbols.h"

#include "ui/Pictures.h"

#include <QLoggingCategory>
#include <QPainter>
#include <QPixmapCache>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(logSymbols, "tuppi.ui.symbols")

QPicture drawingOf(const QString &name)
{
    return ReadDrawing(u"symbols/"_s + name);
}

/// The symbol's shape is its alpha; whatever colours the drawing holds are replaced.
QPixmap rendered(const QString &name, const QColor &colour, int pixels)
{
    const QPicture drawing = drawingOf(name);
    if (drawing.isNull() || pixels <= 0)
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawDrawing(painter, drawing, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), colour);
    painter.end();
    return QPixmap::fromImage(image);
}

QPixmap cached(const QString &name, const QColor &colour, int pixels)
{
    const QString key =
        u"tuppi/"_s + name + u'/' + colour.name(QColor::HexArgb) + u'/' + QString::number(pixels);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(name, colour, pixels);
        if (pixmap.isNull())
            qCWarning(logSymbols) << "no symbol named" << name;
        else
            QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace

QPixmap SymbolPixmap(const QString &name, const QColor &colour, double size, double devicePixelRatio)
{
    QPixmap pixmap = cached(name, colour, qRound(size * devicePixelRatio));
    if (!pixmap.isNull())
        pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

} // namespace tuppi
