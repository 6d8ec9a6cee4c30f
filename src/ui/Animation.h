#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <QTimer>

#include <memory>

namespace tuppi {

class GifReader;

/// An animated picture, played endlessly, whatever the file says about that. Each frame is decoded once, when
/// it is first due, and kept packed as what it changes of the one before: a pose of Tuppi in plain pixels would take
/// seven megabytes, and each frame packed by itself half of one.
class Animation : public QObject
{
    Q_OBJECT
public:
    /// `frames` has not been read from; `size` is what they are scaled to, in pixels.
    Animation(std::unique_ptr<GifReader> frames, QSize size, QObject *parent = nullptr);
    ~Animation() override;

    QSize size() const { return m_size; }
    /// Empty when not even the first frame can be read.
    const QPixmap &picture() const { return m_picture; }
    int frameNumber() const { return m_number; }
    /// Goes to that frame, or as far towards it as the file can be read.
    void goTo(int number);

    bool isRunning() const { return m_timer.isActive(); }
    /// A single picture does not run. No frame is decoded: that is done when it is due.
    void start();
    void pause() { m_timer.stop(); }

Q_SIGNALS:
    void frameChanged();

private:
    struct Frame
    {
        QByteArray packed; ///< its pixels, exclusive or those before it (of the first frame: nothing)
        int milliseconds = 0;
    };

    bool decodeNext();
    bool advance();
    void rewind();
    void show();
    void step();

    QSize m_size;
    std::unique_ptr<GifReader> m_reader; ///< until its last frame has been read
    QList<Frame> m_frames;
    int m_number = -1;
    QImage m_pixels; ///< of that frame, blank before the first
    QPixmap m_picture;
    QTimer m_timer;
};

} // namespace tuppi
