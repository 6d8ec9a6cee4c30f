#include "ui/Pictures.h"

#include <QImageIOHandler>
#include <QImageIOPlugin>
#include <QPainter>
#include <QPluginLoader>

#include <png.h>

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;

QImage ReadPng(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&png, bytes.constData(), size_t(bytes.size())))
        return {};
    png.format = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
    QImage image(int(png.width), int(png.height), QImage::Format_ARGB32);
    if (!image.isNull() && png_image_finish_read(&png, nullptr, image.bits(), png_int_32(image.bytesPerLine()), nullptr))
        return image;
    png_image_free(&png);
    return {};
}

QPicture ReadDrawing(const QString &name)
{
    QPicture drawing;
    const QString path = u":/"_s + name + u".pic"_s;
    if (QFile::exists(path))
        drawing.load(path);
    return drawing;
}

void drawDrawing(QPainter &painter, const QPicture &drawing, const QRectF &rect)
{
    const QRectF own = drawing.boundingRect();
    const double scale = qMin(rect.width() / own.width(), rect.height() / own.height());
    painter.save();
    painter.translate(rect.center());
    painter.scale(scale, scale);
    painter.translate(-own.center());
    painter.drawPicture(0, 0, drawing);
    painter.restore();
}

GifReader::GifReader(const QString &path)
    : m_file(path)
{
    QPluginLoader plugin(u"imageformats/qgif"_s);
    auto *gif = qobject_cast<QImageIOPlugin *>(plugin.instance());
    if (gif && m_file.open(QIODevice::ReadOnly))
        m_handler.reset(gif->create(&m_file, "gif"));
    m_first = next();
}

GifReader::~GifReader() = default;

QImage GifReader::next()
{
    if (!m_first.isNull())
        return std::exchange(m_first, QImage());
    QImage image;
    if (!m_handler || !m_handler->read(&image))
        return {};
    return image;
}

int GifReader::count() const
{
    return m_handler ? m_handler->imageCount() : 0;
}

int GifReader::delay() const
{
    return m_handler ? m_handler->nextImageDelay() : 0;
}

} // namespace tuppi
