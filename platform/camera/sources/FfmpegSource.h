#pragma once

#include "camera/sources/FrameSource.h"

#include <atomic>
#include <chrono>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace camera {

/// The best video stream of anything that libavformat opens: files, RTSP and other streams, V4L2 devices ("/dev/video0").
/// Pictures keep the value range of the video; RGB becomes full range. A stream that changes its size is scaled to its first one.
/// Damaged frames are skipped as the decoder does.
class FfmpegSource final : public FrameSource {
public:
    /// rate: for streams without time stamps; otherwise the container's, else 25. Throws SourceError.
    FfmpegSource(std::string url, std::optional<FrameRate> rate);
    ~FfmpegSource() override;

    uint32_t width() const override { return mWidth; }
    uint32_t height() const override { return mHeight; }
    bool advance() override;
    int64_t time() const override { return mTime; }
    std::optional<int64_t> duration() const override;
    void picture(Picture& picture) override;
    bool live() const override { return mLive; }
    void cancel() override { mCancelled = true; }

private:
    void open();
    void openDecoder();
    void close();
    bool decode();
    void feedDecoder();
    void setTime();
    static int interrupted(void* source);
    [[noreturn]] void fail(char const* what, int error);

    std::string const mUrl;
    std::optional<FrameRate> const mRate;
    AVFormatContext* mFormat = nullptr;
    AVCodecContext* mCodec = nullptr;
    AVPacket* mPacket = nullptr;
    AVFrame* mFrame = nullptr;
    SwsContext* mScaler = nullptr;
    int mStream = -1;
    uint32_t mWidth = 0;
    uint32_t mHeight = 0;
    bool mLive = false;
    bool mEnded = false;
    int64_t mInterval = 40; // ms, the usual distance of two frames
    int64_t mOrigin = 0;    // time stamp of the stream at time 0
    bool mStarted = false;
    int64_t mTime = 0;
    uint64_t mFrames = 0;
    std::atomic<bool> mCancelled = false;
    std::chrono::steady_clock::time_point mDeadline; // of the call into the library that is under way
};

} // namespace camera
