#include "media/AudioReader.h"

#include "core/Failure.h"
#include "media/EditList.h"
#include "media/Ffmpeg.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Playlists and other forms that lead to further files are left out on purpose.
constexpr const char *acceptedForms = "mov,mp3,wav,w64,aac,flac,ogg,matroska,aiff,caf,amr,avi,mpegts,asf,au";

// Longer leaps of a file's clock are taken for damage, not for missing sound.
constexpr double longestGapSeconds = 600;
constexpr double shortestGapSeconds = 0.25;

// 1.2 MB: an hour of sound at 16 kHz, or 18 minutes at 48 kHz.
constexpr int longTable = 50'000;

Failure unreadable(const QString &why)
{
    return Failure(u"The file is not a recording that can be read: "_s + why);
}

// The system's number for what it refused, by FFmpeg's code for it; 0 where it refused nothing: FFmpeg's own codes, such
// as that for the end of a file, are far larger, and a damaged file may lead to places that no file has.
int refusal(int error)
{
    constexpr int largest = 4095;
    const int number = AVUNERROR(error);
    return number > 0 && number <= largest && number != EINVAL && number != EOVERFLOW ? number : 0;
}

Failure refused(int number)
{
    return systemFailure(u"The recording could not be read"_s, number);
}

// What FFmpeg takes for damage may be the disk, as its own code for the error of the file tells.
Failure unreadableFor(int error)
{
    if (refusal(error) == EACCES)
        return unreadable(u"permission was refused."_s);
    if (const int number = refusal(error))
        return refused(number);
    return unreadable(u"it is damaged, incomplete or of another kind."_s);
}

} // namespace

class AudioReader::Private
{
public:
    explicit Private(const QString &path)
    {
        ::av_log_set_level(AV_LOG_QUIET);
        open(path);
        openDecoder();
    }

    // True while `pending` holds samples.
    bool refill();

    AVFormatContext *format() const { return m_format.get(); }
    AVStream *stream() const { return m_stream; }

    std::vector<int16_t> pending;
    size_t pendingAt = 0;
    int64_t silence = 0; // samples to give out in place of sound that the file lacks

private:
    void open(const QString &path);
    void openDecoder();
    bool nextFrame();
    bool feedPacket();
    void convert(AVFrame *frame);
    void prepareResampler(AVFrame *frame);
    void keepTime(const AVFrame *frame);
    int64_t firstTime(int64_t pts) const;

    ffmpeg::File m_file; // outlives the format, which reads from it
    ffmpeg::Format m_format;
    ffmpeg::Codec m_codec;
    ffmpeg::Packet m_packet{::av_packet_alloc()};
    ffmpeg::Frame m_frame{::av_frame_alloc()};
    ffmpeg::Resampler m_resampler;
    ffmpeg::Layout m_layout;
    int m_rate = 0;
    int m_sampleFormat = -1;
    AVStream *m_stream = nullptr;
    std::optional<int64_t> m_firstPts;
    int64_t m_made = 0; // samples made so far, silence included
    bool m_fileEnded = false;
    bool m_decoderEnded = false;
};

void AudioReader::Private::open(const QString &path)
{
    if (!QFileInfo(path).isFile())
        throw Failure(u"The recording is no longer in its folder: “"_s + path + u"”."_s);
    const QByteArray address = "file:" + QFile::encodeName(path);
    AVIOContext *file = nullptr;
    const int reached = ::avio_open(&file, address.constData(), AVIO_FLAG_READ);
    if (reached < 0)
        throw unreadableFor(reached);
    m_file.reset(file);
    AVFormatContext *opened = ::avformat_alloc_context();
    opened->pb = file;
    AVDictionary *options = nullptr;
    ::av_dict_set(&options, "protocol_whitelist", "file", 0);
    ::av_dict_set(&options, "format_whitelist", acceptedForms, 0);
    // To follow a list of edits, FFmpeg holds a long recording's table of packets twice.
    if (isPlayedAsItStands(path))
        ::av_dict_set(&options, "advanced_editlist", "0", 0);
    const int result = ::avformat_open_input(&opened, address.constData(), nullptr, &options);
    ::av_dict_free(&options);
    if (result < 0)
        throw unreadableFor(m_file->error);
    m_format.reset(opened);
    if (::avformat_find_stream_info(opened, nullptr) < 0)
        throw unreadableFor(m_file->error);
}

void AudioReader::Private::openDecoder()
{
    const AVCodec *codec = nullptr;
    const int index = ::av_find_best_stream(m_format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (index == AVERROR_DECODER_NOT_FOUND)
        throw unreadable(u"its kind of sound is not known here."_s);
    if (index < 0)
        throw unreadable(u"there is no sound in it."_s);
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        if (int(i) != index)
            m_format->streams[i]->discard = AVDISCARD_ALL;
    }
    m_stream = m_format->streams[index];
    m_codec.reset(::avcodec_alloc_context3(codec));
    m_codec->pkt_timebase = m_stream->time_base;
    m_codec->thread_count = 1; // the recogniser forks, and a fork copies no threads
    if (::avcodec_parameters_to_context(m_codec.get(), m_stream->codecpar) < 0 ||
        ::avcodec_open2(m_codec.get(), codec, nullptr) < 0)
        throw unreadable(u"its kind of sound is not known here."_s);
}

// Hands one packet of our stream to the decoder; false when it has got the last one.
bool AudioReader::Private::feedPacket()
{
    while (!m_fileEnded) {
        if (::av_read_frame(m_format.get(), m_packet.get()) < 0) {
            // A recording that was cut off is worth what there is of it; a disk that fails or goes is not its end.
            if (const int number = refusal(m_file->error))
                throw refused(number);
            m_fileEnded = true;
            ::avcodec_send_packet(m_codec.get(), nullptr);
            return true;
        }
        const bool ours = m_packet->stream_index == m_stream->index;
        const int result = ours ? ::avcodec_send_packet(m_codec.get(), m_packet.get()) : -1;
        ::av_packet_unref(m_packet.get());
        if (result >= 0)
            return true;
        // A packet that does not decode is skipped: the rest of the recording is worth having.
    }
    return false;
}

bool AudioReader::Private::nextFrame()
{
    while (!m_decoderEnded) {
        const int result = ::avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result >= 0)
            return true;
        if (result == AVERROR_EOF || (result != AVERROR(EAGAIN) && m_fileEnded))
            m_decoderEnded = true;
        else if (!feedPacket())
            m_decoderEnded = true;
    }
    return false;
}

void AudioReader::Private::prepareResampler(AVFrame *frame)
{
    const bool same = m_resampler && m_rate == frame->sample_rate && m_sampleFormat == frame->format &&
                      ::av_channel_layout_compare(&m_layout.value, &frame->ch_layout) == 0;
    if (same)
        return;
    AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
    SwrContext *made = nullptr;
    if (::swr_alloc_set_opts2(&made, &mono, AV_SAMPLE_FMT_S16, sampleRate, &frame->ch_layout,
                              AVSampleFormat(frame->format), frame->sample_rate, 0, nullptr) < 0)
        throw unreadable(u"its channels cannot be mixed."_s);
    m_resampler.reset(made);
    if (::swr_init(made) < 0)
        throw unreadable(u"its channels cannot be mixed."_s);
    m_rate = frame->sample_rate;
    m_sampleFormat = frame->format;
    ::av_channel_layout_copy(&m_layout.value, &frame->ch_layout);
}

// Players count from where the first of a file's streams begins, which may be a picture before any sound.
int64_t AudioReader::Private::firstTime(int64_t pts) const
{
    if (m_format->start_time == AV_NOPTS_VALUE)
        return pts;
    const int64_t start = av_rescale_q(m_format->start_time, AV_TIME_BASE_Q, m_stream->time_base);
    return std::min(start, pts);
}

// A recording with a hole in it stays in step with its own clock.
void AudioReader::Private::keepTime(const AVFrame *frame)
{
    const int64_t pts = frame->best_effort_timestamp;
    if (pts == AV_NOPTS_VALUE)
        return;
    if (!m_firstPts)
        m_firstPts = firstTime(pts);
    const double due = double(pts - *m_firstPts) * av_q2d(m_stream->time_base);
    const double delay = double(::swr_get_delay(m_resampler.get(), sampleRate)) / sampleRate;
    const double gap = due - double(m_made) / sampleRate - delay;
    if (gap > shortestGapSeconds && gap < longestGapSeconds) {
        const auto missing = int64_t(gap * sampleRate);
        silence += missing;
        m_made += missing;
    }
}

void AudioReader::Private::convert(AVFrame *frame)
{
    prepareResampler(frame);
    keepTime(frame);
    const int room = ::swr_get_out_samples(m_resampler.get(), frame->nb_samples);
    pending.resize(size_t(std::max(room, 0)));
    uint8_t *out = reinterpret_cast<uint8_t *>(pending.data());
    const int made = ::swr_convert(m_resampler.get(), &out, room,
                                   const_cast<const uint8_t **>(frame->extended_data), frame->nb_samples);
    pending.resize(size_t(std::max(made, 0)));
    pendingAt = 0;
    m_made += int64_t(pending.size());
}

bool AudioReader::Private::refill()
{
    while (pendingAt == pending.size() && nextFrame()) {
        if (m_frame->nb_samples > 0 && m_frame->sample_rate > 0)
            convert(m_frame.get());
        ::av_frame_unref(m_frame.get());
    }
    return pendingAt < pending.size();
}

AudioReader::AudioReader(const QString &path)
    : m_private(std::make_unique<Private>(path))
{
}

AudioReader::~AudioReader() = default;

size_t AudioReader::read(std::span<int16_t> samples)
{
    size_t filled = 0;
    while (filled < samples.size() && m_private->refill()) {
        const size_t wanted = samples.size() - filled;
        if (m_private->silence > 0) {
            const size_t count = std::min(wanted, size_t(m_private->silence));
            std::fill_n(samples.begin() + std::ptrdiff_t(filled), count, int16_t(0));
            m_private->silence -= int64_t(count);
            filled += count;
            continue;
        }
        const size_t count = std::min(wanted, m_private->pending.size() - m_private->pendingAt);
        std::memcpy(samples.data() + filled, m_private->pending.data() + m_private->pendingAt,
                    count * sizeof(int16_t));
        m_private->pendingAt += count;
        filled += count;
    }
    m_position += int64_t(filled);
    return filled;
}

void AudioReader::skip(int64_t count)
{
    std::array<int16_t, 8192> dropped;
    while (count > 0) {
        const size_t got =
            read(std::span(dropped).first(size_t(std::min<int64_t>(count, int64_t(dropped.size())))));
        if (got == 0)
            return;
        count -= int64_t(got);
    }
}

bool AudioReader::holdsLongTable() const
{
    return ::avformat_index_get_entries_count(m_private->stream()) > longTable;
}

std::optional<double> AudioReader::durationSeconds() const
{
    const int64_t duration = m_private->format()->duration;
    if (duration <= 0)
        return std::nullopt;
    return double(duration) / AV_TIME_BASE;
}

std::optional<QDateTime> AudioReader::recordedAt() const
{
    for (const AVDictionary *tags : {m_private->format()->metadata, m_private->stream()->metadata}) {
        const auto tag = [tags](const char *name) {
            const AVDictionaryEntry *entry = ::av_dict_get(tags, name, nullptr, 0);
            return entry ? QString::fromUtf8(entry->value) : QString();
        };
        // Field recorders write the day and the hour apart.
        const QStringList texts{tag("com.apple.quicktime.creationdate"), tag("creation_time"), tag("date"),
                                tag("date") + u'T' + tag("creation_time")};
        for (const QString &text : texts) {
            // A year alone, as music files have it, is no time of recording.
            const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
            const bool plausible = time.isValid() && text.contains(u':') && time.date().year() > 1971 &&
                                   time <= QDateTime::currentDateTime().addDays(1);
            if (plausible)
                return time;
        }
    }
    return std::nullopt;
}

QString decodingTrouble()
{
    static constexpr std::array needed{AV_CODEC_ID_AAC,       AV_CODEC_ID_MP3,      AV_CODEC_ID_FLAC,
                                       AV_CODEC_ID_VORBIS,    AV_CODEC_ID_OPUS,     AV_CODEC_ID_ALAC,
                                       AV_CODEC_ID_PCM_S16LE, AV_CODEC_ID_PCM_S16BE};
    for (const AVCodecID id : needed) {
        if (!::avcodec_find_decoder(id))
            return u"The FFmpeg libraries here cannot decode %1."_s.arg(
                QString::fromUtf8(::avcodec_get_name(id)));
    }
    return {};
}

} // namespace engine
