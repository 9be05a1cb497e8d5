#pragma once

#include "camera/sources/FrameSource.h"
#include "camera/sources/Scaler.h"

#include <memory>
#include <mutex>

namespace camera {

/// The frames of a source in one size, over and over when it loops. Belongs to one thread at a time but for cancel().
class FrameReader {
public:
    /// Opens the source; throws SourceError.
    FrameReader(std::string sourceText, std::optional<FrameRate> rate, bool loop);

    /// Of the source's own frames, before scaling.
    uint32_t sourceWidth() const { return mSource->width(); }
    uint32_t sourceHeight() const { return mSource->height(); }
    bool live() const { return mSource->live(); }

    void setSize(uint32_t width, uint32_t height);

    /// The next frame, and its time in ms after the very first one, which goes on growing when the source starts over.
    /// False at the end. Throws SourceError when the source breaks off.
    bool next(Picture& picture, int64_t& time);

    /// Makes a waiting next() end soon, for good. From any thread.
    void cancel();

private:
    bool advance();
    bool startOver();

    std::string const mSourceText;
    std::optional<FrameRate> const mRate;
    bool const mLoop;
    std::mutex mMutex; // held while mSource is replaced, and to reach it from another thread
    bool mCancelled = false;
    std::unique_ptr<FrameSource> mSource;
    Scaler mScaler;
    Picture mUnscaled;
    uint32_t mWidth;
    uint32_t mHeight;
    bool mAnyFrame = false;  // in this round
    int64_t mRoundStart = 0; // ms
    int64_t mLast = 0;       // time of the last frame
    int64_t mInterval = 40;  // between the last two frames
};

} // namespace camera
