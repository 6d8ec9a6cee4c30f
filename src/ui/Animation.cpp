#include "ui/Animation.h"

#include "ui/FrameTicks.h"
#include "ui/Pictures.h"

#include <QImage>

#include <zlib.h>

#include <array>

namespace tuppi {

namespace {

constexpr auto pixelFormat = QImage::Format_ARGB32_Premultiplied;

// Qt's own packing takes three times the picture's memory for each frame: by pieces, with a short memory of what was
// before, the window's peak is lower and packs as well.
constexpr int windowBits = 13;
constexpr int memoryLevel = 5;
using Piece = std::array<uchar, 8192>;

void combine(uchar *bits, const uchar *with, qsizetype size)
{
    for (qsizetype at = 0; at < size; ++at)
        bits[at] = uchar(bits[at] ^ with[at]);
}

QByteArray pack(const QImage &image)
{
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, windowBits, memoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    stream.next_in = const_cast<uchar *>(image.constBits());
    stream.avail_in = uInt(image.sizeInBytes());
    QByteArray packed;
    Piece piece;
    int state = Z_OK;
    while (state == Z_OK) {
        stream.next_out = piece.data();
        stream.avail_out = uInt(piece.size());
        state = deflate(&stream, Z_FINISH);
        packed.append(reinterpret_cast<const char *>(piece.data()), qsizetype(piece.size() - stream.avail_out));
    }
    deflateEnd(&stream);
    packed.squeeze();
    return packed;
}

/// Changes the pixels as the packed ones say.
void applyPacked(const QByteArray &packed, QImage &pixels)
{
    z_stream stream{};
    if (inflateInit2(&stream, windowBits) != Z_OK)
        return;
    stream.next_in = reinterpret_cast<uchar *>(const_cast<char *>(packed.constData()));
    stream.avail_in = uInt(packed.size());
    uchar *bits = pixels.bits();
    qsizetype left = pixels.sizeInBytes();
    Piece piece;
    int state = Z_OK;
    while (state == Z_OK && left > 0) {
        stream.next_out = piece.data();
        stream.avail_out = uInt(piece.size());
        state = inflate(&stream, Z_NO_FLUSH);
        const qsizetype got = qMin(left, qsizetype(piece.size() - stream.avail_out));
        combine(bits, piece.data(), got);
        bits += got;
        left -= got;
    }
    inflateEnd(&stream);
}

} // namespace

Animation::Animation(std::unique_ptr<GifReader> frames, QSize size, QObject *parent)
    : QObject(parent)
    , m_size(size)
    , m_reader(std::move(frames))
{
    connect(&m_timer, &QTimer::timeout, this, &Animation::step);
    rewind();
    goTo(0);
}

Animation::~Animation() = default;

/// Only when the pixels are those of the last frame that is known.
bool Animation::decodeNext()
{
    if (!m_reader)
        return false;
    QImage image = m_reader->next();
    if (image.isNull()) {
        m_reader.reset();
        return false;
    }
    constexpr int unsaid = 100; // a file that gives no time for a frame means "as usual"
    const int milliseconds = m_reader->delay();
    image = image.scaled(m_size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(pixelFormat);
    combine(image.bits(), m_pixels.constBits(), image.sizeInBytes());
    m_frames.append({pack(image), milliseconds > 0 ? milliseconds : unsaid});
    return true;
}

bool Animation::advance()
{
    if (m_number + 1 == m_frames.size() && !decodeNext())
        return false;
    ++m_number;
    m_picture = {}; // which shares the pixels
    applyPacked(m_frames.at(m_number).packed, m_pixels);
    return true;
}

void Animation::rewind()
{
    m_number = -1;
    m_pixels = QImage(m_size, pixelFormat);
    m_pixels.fill(Qt::transparent);
}

void Animation::show()
{
    m_picture = QPixmap::fromImage(m_pixels);
}

void Animation::goTo(int number)
{
    if (number < m_number)
        rewind();
    while (m_number < number && advance())
        continue;
    if (m_number >= 0)
        show();
}

void Animation::start()
{
    if (m_frames.size() > 1 || (m_number >= 0 && m_reader && m_reader->count() > 1))
        m_timer.start(millisecondsToTick(m_frames.at(m_number).milliseconds));
}

void Animation::step()
{
    if (!advance()) {
        if (m_frames.size() == 1) { // the others cannot be read
            pause();
            return;
        }
        rewind();
        advance();
    }
    show();
    m_timer.setInterval(millisecondsToTick(m_frames.at(m_number).milliseconds));
    Q_EMIT frameChanged();
}

} // namespace tuppi
