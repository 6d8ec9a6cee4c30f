#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include <memory>

// Owners for what FFmpeg's libraries hand out.
namespace engine::ffmpeg {

struct Release
{
    void operator()(AVIOContext *file) const { ::avio_closep(&file); }
    void operator()(AVFormatContext *format) const { ::avformat_close_input(&format); }
    void operator()(AVCodecContext *codec) const { ::avcodec_free_context(&codec); }
    void operator()(AVPacket *packet) const { ::av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { ::av_frame_free(&frame); }
    void operator()(SwrContext *resampler) const { ::swr_free(&resampler); }
};

using File = std::unique_ptr<AVIOContext, Release>;
using Format = std::unique_ptr<AVFormatContext, Release>;
using Codec = std::unique_ptr<AVCodecContext, Release>;
using Packet = std::unique_ptr<AVPacket, Release>;
using Frame = std::unique_ptr<AVFrame, Release>;
using Resampler = std::unique_ptr<SwrContext, Release>;

struct Layout
{
    AVChannelLayout value{};

    Layout() = default;
    Layout(const Layout &) = delete;
    Layout &operator=(const Layout &) = delete;
    ~Layout() { ::av_channel_layout_uninit(&value); }
};

} // namespace engine::ffmpeg
