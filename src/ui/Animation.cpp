#include "ui/Animation.h"

#include <QImage>

namespace tuppi {

namespace {

constexpr auto pixelFormat = QImage::Format_ARGB32_Premultiplied;

QByteArray pack(const QImage &image)
{
    constexpr int fastest = 1;
    QByteArray packed = qCompress(image.constBits(), image.sizeInBytes(), fastest);
    packed.squeeze(); // it was given room for pixels that cannot be packed
    return packed;
}

} // namespace

Animation::Animation(const QString &file, QSize size, QObject *parent)
    : QObject(parent)
    , m_size(size)
    , m_reader(std::make_unique<QImageReader>(file, "gif"))
{
    connect(&m_timer, &QTimer::timeout, this, &Animation::step);
    goTo(0);
}

Animation::~Animation() = default;

bool Animation::decodeNext()
{
    if (!m_reader)
        return false;
    const QImage image = m_reader->read();
    if (image.isNull()) {
        m_reader.reset();
        return false;
    }
    constexpr int unsaid = 100; // a file that gives no time for a frame means "as usual"
    const int milliseconds = m_reader->nextImageDelay();
    const QImage scaled =
        image.scaled(m_size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(pixelFormat);
    m_frames.append({pack(scaled), milliseconds > 0 ? milliseconds : unsaid});
    return true;
}

bool Animation::has(int number)
{
    while (m_frames.size() <= number) {
        if (!decodeNext())
            return false;
    }
    return true;
}

void Animation::show(int number)
{
    QImage image(m_size, pixelFormat);
    const QByteArray pixels = qUncompress(m_frames.at(number).packed);
    memcpy(image.bits(), pixels.constData(), qMin(pixels.size(), image.sizeInBytes()));
    m_number = number;
    m_picture = QPixmap::fromImage(std::move(image));
}

void Animation::goTo(int number)
{
    if (has(number))
        show(number);
    else if (!m_frames.isEmpty())
        show(int(m_frames.size()) - 1);
}

void Animation::start()
{
    if (has(1))
        m_timer.start(m_frames.at(m_number).milliseconds);
}

void Animation::step()
{
    show(has(m_number + 1) ? m_number + 1 : 0);
    m_timer.setInterval(m_frames.at(m_number).milliseconds);
    Q_EMIT frameChanged();
}

} // namespace tuppi
