#ifdef CONTRAFLOW_FFMPEG

#include "camera/sources/FfmpegSource.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavdevice/avdevice.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace camera {

namespace {

constexpr std::chrono::seconds PATIENCE(10); // for a source that says nothing

AVRational const MILLISECONDS = {1, 1000};

bool isDevice(std::string const& url)
{
    return url.starts_with("/dev/video");
}

bool isLive(std::string const& url)
{
    for (char const* start : {"rtsp://", "rtsps://", "rtp://", "udp://", "tcp://", "srt://", "rtmp://"})
        if (url.starts_with(start))
            return true;
    return isDevice(url);
}

/// Keeps the range of YUV as it is; what has none of its own becomes full range.
void setRange(SwsContext* scaler, AVFrame const& frame)
{
    auto const* const format = av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    bool const rgb = format != nullptr && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
    bool const gray = format != nullptr && format->nb_components <= 2;
    int const full = rgb || gray || frame.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    int const* const coefficients = sws_getCoefficients(SWS_CS_ITU601);
    sws_setColorspaceDetails(scaler, coefficients, full, coefficients, full, 0, 1 << 16, 1 << 16);
}

/// The usual layout of video needs no conversion: luma row by row, and the two planes of chroma woven into pairs. False for
/// any other layout or size.
bool weave(AVFrame const& frame, Picture& picture)
{
    bool const isPlanar420 = frame.format == AV_PIX_FMT_YUV420P || frame.format == AV_PIX_FMT_YUVJ420P;
    if (!isPlanar420 || frame.width != int(picture.width) || frame.height != int(picture.height))
        return false;
    for (int row = 0; row < frame.height; ++row)
        std::memcpy(
            picture.luma() + size_t(row) * picture.width, frame.data[0] + ptrdiff_t(row) * frame.linesize[0], picture.width);
    for (uint32_t row = 0; row < picture.chromaHeight(); ++row) {
        uint8_t const* const first = frame.data[1] + ptrdiff_t(row) * frame.linesize[1];
        uint8_t const* const second = frame.data[2] + ptrdiff_t(row) * frame.linesize[2];
        uint8_t* const pairs = picture.chroma() + size_t(row) * 2 * picture.chromaWidth();
        for (uint32_t i = 0; i < picture.chromaWidth(); ++i) {
            pairs[2 * i] = first[i];
            pairs[2 * i + 1] = second[i];
        }
    }
    return true;
}

} // namespace

FfmpegSource::FfmpegSource(std::string url, std::optional<FrameRate> rate)
    : mUrl(std::move(url))
    , mRate(rate)
    , mLive(isLive(mUrl))
{
    try {
        open();
        openDecoder();
    } catch (...) {
        close();
        throw;
    }
}

FfmpegSource::~FfmpegSource()
{
    close();
}

void FfmpegSource::open()
{
    av_log_set_level(AV_LOG_FATAL); // errors reach the user as our own
    avdevice_register_all();
    avformat_network_init();
    mFormat = avformat_alloc_context();
    mPacket = av_packet_alloc();
    mFrame = av_frame_alloc();
    if (mFormat == nullptr || mPacket == nullptr || mFrame == nullptr)
        fail("cannot be opened", AVERROR(ENOMEM));
    mFormat->interrupt_callback = {&FfmpegSource::interrupted, this};

    AVDictionary* options = nullptr;
    av_dict_set(&options, "rtsp_flags", "prefer_tcp", 0);
    AVInputFormat const* const device = isDevice(mUrl) ? av_find_input_format("v4l2") : nullptr;
    mDeadline = std::chrono::steady_clock::now() + PATIENCE;
    int error = avformat_open_input(&mFormat, mUrl.c_str(), device, &options);
    av_dict_free(&options);
    if (error < 0)
        fail("cannot be opened", error);
    mDeadline = std::chrono::steady_clock::now() + PATIENCE;
    if ((error = avformat_find_stream_info(mFormat, nullptr)) < 0)
        fail("is no video that can be read", error);
}

void FfmpegSource::openDecoder()
{
    AVCodec const* codec = nullptr;
    mStream = av_find_best_stream(mFormat, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (mStream < 0)
        fail("holds no video that can be decoded", mStream);
    AVStream* const stream = mFormat->streams[mStream];
    for (unsigned int i = 0; i < mFormat->nb_streams; ++i)
        if (int(i) != mStream)
            mFormat->streams[i]->discard = AVDISCARD_ALL;

    mCodec = avcodec_alloc_context3(codec);
    if (mCodec == nullptr)
        fail("cannot be decoded", AVERROR(ENOMEM));
    int error = avcodec_parameters_to_context(mCodec, stream->codecpar);
    mCodec->thread_count = 1;
    mCodec->pkt_timebase = stream->time_base;
    mCodec->max_pixels = MAX_PIXELS;
    if (error < 0 || (error = avcodec_open2(mCodec, codec, nullptr)) < 0)
        fail("cannot be decoded", error);
    if (mCodec->width <= 0 || mCodec->height <= 0 || int64_t(mCodec->width) * mCodec->height > MAX_PIXELS)
        fail("has frames of no size, or too large ones", AVERROR_INVALIDDATA);
    mWidth = uint32_t(mCodec->width);
    mHeight = uint32_t(mCodec->height);

    AVRational const rate = av_guess_frame_rate(mFormat, stream, nullptr);
    if (mRate)
        mInterval = mRate->time(1);
    else if (rate.num > 0 && rate.den > 0)
        mInterval = av_rescale(1000, rate.den, rate.num);
    mInterval = std::max<int64_t>(mInterval, 1);
}

void FfmpegSource::close()
{
    sws_freeContext(mScaler);
    av_frame_free(&mFrame);
    av_packet_free(&mPacket);
    avcodec_free_context(&mCodec);
    avformat_close_input(&mFormat);
}

std::optional<int64_t> FfmpegSource::duration() const
{
    if (mFormat == nullptr || mFormat->duration <= 0)
        return std::nullopt;
    return mFormat->duration / (AV_TIME_BASE / 1000);
}

bool FfmpegSource::advance()
{
    if (mEnded)
        return false;
    mEnded = true; // also when decoding throws
    if (!decode())
        return false;
    mEnded = false;
    setTime();
    ++mFrames;
    return true;
}

bool FfmpegSource::decode()
{
    for (;;) {
        int const error = avcodec_receive_frame(mCodec, mFrame);
        if (error >= 0 && mFrame->width > 0 && mFrame->height > 0)
            return true;
        if (error == AVERROR_EOF)
            return false;
        if (error == AVERROR(EAGAIN))
            feedDecoder();
        else if (error < 0)
            fail("cannot be decoded", error);
    }
}

/// Hands the decoder the stream's next packet, or the word that there are no more.
void FfmpegSource::feedDecoder()
{
    for (;;) {
        mDeadline = std::chrono::steady_clock::now() + PATIENCE;
        int error = av_read_frame(mFormat, mPacket);
        if (error == AVERROR_EOF) {
            avcodec_send_packet(mCodec, nullptr);
            return;
        }
        if (error == AVERROR(EAGAIN))
            continue;
        if (error < 0)
            fail("broke off", error);
        bool const ours = mPacket->stream_index == mStream;
        error = ours ? avcodec_send_packet(mCodec, mPacket) : 0;
        av_packet_unref(mPacket);
        // A damaged packet costs its frame only.
        if (ours && error != AVERROR_INVALIDDATA) {
            if (error < 0)
                fail("cannot be decoded", error);
            return;
        }
    }
}

/// Time stamps that are missing, or that jump back, continue at the usual distance.
void FfmpegSource::setTime()
{
    int64_t const stamp = mFrame->best_effort_timestamp;
    AVRational const unit = mFormat->streams[mStream]->time_base;
    int64_t const expected = mTime + mInterval;
    if (stamp == AV_NOPTS_VALUE) {
        mTime = mFrames == 0 ? 0 : mRate ? std::max(mRate->time(mFrames), mTime + 1) : expected;
        return;
    }
    if (!mStarted) {
        mStarted = true;
        mOrigin = stamp - av_rescale_q(mFrames == 0 ? 0 : expected, MILLISECONDS, unit);
    }
    int64_t time = av_rescale_q_rnd(stamp - mOrigin, unit, MILLISECONDS, AV_ROUND_DOWN);
    if (mFrames > 0 && time < mTime) {
        mOrigin = stamp - av_rescale_q(expected, MILLISECONDS, unit);
        time = expected;
    }
    mTime = time;
}

void FfmpegSource::picture(Picture& picture)
{
    picture.resize(mWidth, mHeight);
    if (weave(*mFrame, picture))
        return;
    mScaler = sws_getCachedContext(mScaler, mFrame->width, mFrame->height, AVPixelFormat(mFrame->format), int(mWidth),
        int(mHeight), AV_PIX_FMT_NV12, SWS_AREA | SWS_ACCURATE_RND | SWS_BITEXACT, nullptr, nullptr, nullptr);
    if (mScaler == nullptr)
        throw SourceError(mUrl + " has a pixel format that cannot be converted");
    setRange(mScaler, *mFrame);
    uint8_t* const planes[] = {picture.luma(), picture.chroma(), nullptr, nullptr};
    int const strides[] = {int(mWidth), int(2 * picture.chromaWidth()), 0, 0};
    sws_scale(mScaler, mFrame->data, mFrame->linesize, 0, mFrame->height, planes, strides);
}

int FfmpegSource::interrupted(void* source)
{
    auto const* const self = static_cast<FfmpegSource const*>(source);
    return self->mCancelled || std::chrono::steady_clock::now() > self->mDeadline;
}

void FfmpegSource::fail(char const* what, int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(error, text, sizeof text);
    throw SourceError(mUrl + " " + what + ": " + (error == AVERROR_EXIT && !mCancelled ? "nothing came for ten seconds" : text));
}

} // namespace camera

#endif
