#pragma once

#include <QFile>
#include <QImage>
#include <QPicture>

#include <memory>

QT_BEGIN_NAMESPACE
class QImageIOHandler;
QT_END_NAMESPACE

namespace tuppi {

// The toolkit's own reader of pictures asks every picture plugin that is installed, whatever the format: that loads
// them all, and what they link. These know what they read.

/// The picture in a PNG file, null when it cannot be read.
QImage ReadPng(const QString &path);

/// The drawing of that name, "symbols/plus", as the build recorded it; null when there is none. Its bounding rectangle
/// is that of the drawing's coordinates, from zero.
QPicture ReadDrawing(const QString &name);

/// Draws it as large as it fits into the rectangle, centred.
void drawDrawing(QPainter &painter, const QPicture &drawing, const QRectF &rect);

/// The frames of a GIF file, one after the other.
class GifReader
{
public:
    /// Reads the first one.
    explicit GifReader(const QString &path);
    ~GifReader();

    /// Whether the first frame could be read. To be asked before it is taken.
    bool isGood() const { return !m_first.isNull(); }
    /// How many frames the file seems to hold; decodes none of them.
    int count() const;
    /// Null after the last one, and when the file cannot be read.
    QImage next();
    /// How long the one that was read last is to be shown, in milliseconds; 0 when the file does not say.
    int delay() const;

private:
    QFile m_file;
    std::unique_ptr<QImageIOHandler> m_handler;
    QImage m_first; ///< until it is taken
};

} // namespace tuppi
