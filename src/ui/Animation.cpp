#include "ui/Animation.h"

#include "ui/Pictures.h"

#include <QImage>

namespace tuppi {

namespace {

constexpr auto pixelFormat = QImage::Format_ARGB32_Premultiplied;

void combine(QImage &pixels, const uchar *with, qsizetype size)
{
    uchar *bits = pixels.bits();
    for (qsizetype at = 0, end = qMin(size, pixels.sizeInBytes()); at < end; ++at)
        bits[at] = uchar(bits[at] ^ with[at]);
}

QByteArray pack(const QImage &image)
{
    constexpr int fastest = 1;
    QByteArray packed = qCompress(image.constBits(), image.sizeInBytes(), fastest);
    packed.squeeze(); // it was given room for pixels that cannot be packed
    return packed;
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
    combine(image, m_pixels.constBits(), m_pixels.sizeInBytes());
    m_frames.append({pack(image), milliseconds > 0 ? milliseconds : unsaid});
    return true;
}

bool Animation::advance()
{
    if (m_number + 1 == m_frames.size() && !decodeNext())
        return false;
    ++m_number;
    const QByteArray change = qUncompress(m_frames.at(m_number).packed);
    combine(m_pixels, reinterpret_cast<const uchar *>(change.constData()), change.size());
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
        m_timer.start(m_frames.at(m_number).milliseconds);
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
    m_timer.setInterval(m_frames.at(m_number).milliseconds);
    Q_EMIT frameChanged();
}

} // namespace tuppi
