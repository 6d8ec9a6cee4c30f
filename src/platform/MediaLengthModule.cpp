#include "platform/MediaLengthModule.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace {

using Status = struct stat;

/// One file while it is read.
class Source
{
public:
    Source(const QDeadlineTimer &deadline, const std::atomic<bool> &cancelled)
        : m_deadline(deadline)
        , m_cancelled(cancelled)
    {
    }
    ~Source()
    {
        if (m_file >= 0)
            ::close(m_file);
    }
    Q_DISABLE_COPY(Source)

    /// Opens a regular file; anything else is left untouched, as opening a pipe or a device can have effects.
    bool open(const QString &path)
    {
        const QByteArray name = QFile::encodeName(path);
        Status before{}, after{};
        if (::stat(name.constData(), &before) != 0 || !S_ISREG(before.st_mode))
            return false;
        // Not to wait even when a pipe has taken the file's place in between.
        m_file = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        return m_file >= 0 && ::fstat(m_file, &after) == 0 && S_ISREG(after.st_mode) && after.st_size > 0;
    }

    bool isOver() const { return m_cancelled.load(std::memory_order_relaxed) || m_deadline.hasExpired(); }

    static int read(void *opaque, uint8_t *buffer, int size)
    {
        const auto *source = static_cast<const Source *>(opaque);
        if (source->isOver())
            return AVERROR_EXIT;
        const ssize_t count = ::read(source->m_file, buffer, size_t(size));
        if (count == 0)
            return AVERROR_EOF;
        return count > 0 ? int(count) : AVERROR(errno);
    }

    static int64_t seek(void *opaque, int64_t offset, int whence)
    {
        const auto *source = static_cast<const Source *>(opaque);
        if (whence & AVSEEK_SIZE) {
            Status now{};
            return ::fstat(source->m_file, &now) == 0 ? int64_t(now.st_size) : AVERROR(errno);
        }
        const off_t at = ::lseek(source->m_file, offset, whence & ~AVSEEK_FORCE);
        return at >= 0 ? int64_t(at) : AVERROR(errno);
    }

    static int interrupt(void *opaque) { return static_cast<const Source *>(opaque)->isOver() ? 1 : 0; }

private:
    const QDeadlineTimer m_deadline;
    const std::atomic<bool> &m_cancelled;
    int m_file = -1;
};

/// A playlist or a reference inside a recording stays unopened.
int refuse(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EACCES);
}

struct FreeInput
{
    void operator()(AVIOContext *io) const
    {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
    void operator()(AVFormatContext *format) const { avformat_close_input(&format); }
};
using Input = std::unique_ptr<AVIOContext, FreeInput>;
using Format = std::unique_ptr<AVFormatContext, FreeInput>;

Input makeInput(Source &source)
{
    constexpr int bufferSize = 64 * 1024;
    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferSize));
    AVIOContext *io =
        buffer ? avio_alloc_context(buffer, bufferSize, 0, &source, &Source::read, nullptr, &Source::seek)
               : nullptr;
    if (!io)
        av_free(buffer);
    return Input(io);
}

/// `name` only helps to guess the format.
Format openFormat(Source &source, AVIOContext *io, const QByteArray &name)
{
    AVFormatContext *format = avformat_alloc_context();
    if (!format)
        return nullptr;
    format->pb = io;
    format->flags |= AVFMT_FLAG_CUSTOM_IO;
    format->interrupt_callback = {&Source::interrupt, &source};
    format->io_open = &refuse;
    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    // Frees the format when it fails.
    const int failure = avformat_open_input(&format, name.constData(), nullptr, &options);
    av_dict_free(&options);
    return Format(failure == 0 ? format : nullptr);
}

double seconds(int64_t duration, AVRational unit)
{
    const double length = duration == AV_NOPTS_VALUE ? 0 : double(duration) * av_q2d(unit);
    return std::isfinite(length) && length > 0 ? length : 0;
}

/// What is known by now: the container's length, else that of its main audio stream.
double knownLength(const AVFormatContext *format)
{
    if (const double length = seconds(format->duration, {1, AV_TIME_BASE}); length > 0)
        return length;
    const int best =
        av_find_best_stream(const_cast<AVFormatContext *>(format), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (best < 0)
        return 0;
    const AVStream *stream = format->streams[best];
    return seconds(stream->duration, stream->time_base);
}

} // namespace

double tuppiMediaLength(const QString &path, const QDeadlineTimer &deadline, const std::atomic<bool> &cancelled)
{
    av_log_set_level(AV_LOG_QUIET);
    Source source(deadline, cancelled);
    if (!source.open(path))
        return 0;
    const Input input = makeInput(source);
    if (!input)
        return 0;
    const QByteArray name = "recording." + QFileInfo(path).suffix().toUtf8();
    const Format format = openFormat(source, input.get(), name);
    if (!format)
        return 0;
    if (const double length = knownLength(format.get()); length > 0)
        return length;
    // Reads and decodes a little, which also estimates from the bit rate what no header tells.
    if (avformat_find_stream_info(format.get(), nullptr) < 0 || source.isOver())
        return 0;
    return knownLength(format.get());
}
