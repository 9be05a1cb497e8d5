#pragma once

#include "camera/CameraOptions.h"
#include "camera/FrameReader.h"
#include "camera/RealtimeFeed.h"

#include <optional>

namespace camera {

/// The camera's video: the resolutions that it offers, and its frames at the pace asked for, with injected faults. Belongs to
/// one thread.
class Video {
public:
    /// Opens the source; throws SourceError.
    explicit Video(CameraOptions const& options);
    ~Video();

    std::vector<FrameSize> const& resolutions() const { return mResolutions; }
    FrameSize size() const { return mSize; }

    /// False unless the size is offered and no frame was asked for yet.
    bool setSize(FrameSize size);

    /// True once the last frame was taken or the source broke off.
    bool ended() const { return mEnded; }

    /// The next frame, of size(). False for an injected fault, at the end, or when the source breaks off (which is told on the
    /// error output); picture is then as before.
    bool next(Picture& picture);

private:
    bool faultIsDue();
    bool read(Picture& picture);

    Faults const mFaults;
    bool const mRealtime;
    FrameReader mReader;
    std::vector<FrameSize> mResolutions;
    FrameSize mSize;
    bool mRunning = false;
    bool mEnded = false;
    uint64_t mFrames = 0;
    uint64_t mFailures = 0;            // injected so far
    std::optional<RealtimeFeed> mFeed; // last: its thread uses mReader
};

} // namespace camera
