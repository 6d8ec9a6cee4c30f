#include "ui/Symbols.h"

#include "ui/Colours.h"
#include "ui/Metrics.h"
#include "ui/Pictures.h"

#include <QIconEngine>
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

class SymbolEngine : public QIconEngine
{
public:
    SymbolEngine(const QString &name, const QColor &colour, QSize size)
        : m_name(name)
        , m_colour(colour)
        , m_size(size)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double ratio = painter->device()->devicePixelRatioF();
        const QPixmap picture = scaledPixmap(rect.size() * ratio, mode, state, ratio);
        if (!picture.isNull())
            painter->drawPixmap(rect, picture);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1);
    }

    /// The size is in device pixels here.
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal) override
    {
        const double opacity = mode == QIcon::Disabled ? Metrics::disabledOpacity : 1;
        return cached(m_name, Colours::withOpacity(m_colour, opacity), qMin(size.width(), size.height()));
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return {m_size}; }
    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        const int side = qMin(size.width(), size.height());
        return {side, side};
    }
    QString key() const override { return u"tuppi-symbol"_s; }
    QIconEngine *clone() const override { return new SymbolEngine(*this); }

private:
    QString m_name;
    QColor m_colour;
    QSize m_size;
};

} // namespace

QPixmap SymbolPixmap(const QString &name, const QColor &colour, double size, double devicePixelRatio)
{
    QPixmap pixmap = cached(name, colour, qRound(size * devicePixelRatio));
    if (!pixmap.isNull())
        pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon SymbolIcon(const QString &name, const QColor &colour, double size)
{
    if (drawingOf(name).isNull()) {
        qCWarning(logSymbols) << "no symbol named" << name;
        return {};
    }
    return QIcon(new SymbolEngine(name, colour, QSize(qRound(size), qRound(size))));
}

} // namespace tuppi
