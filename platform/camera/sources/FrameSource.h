#pragma once

#include "camera/sources/FrameRate.h"
#include "camera/sources/Picture.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace camera {

/// A source that cannot be opened or read; the text names the source and says why.
class SourceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Frames one after the other. A source belongs to one thread at a time; only cancel() may come from another.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    /// Pixels, at least 1 each and MAX_PIXELS together; the same for all frames.
    virtual uint32_t width() const = 0;
    virtual uint32_t height() const = 0;

    /// Moves to the next frame, the first one at the first call. False at the end of the source, and from then on.
    /// Throws SourceError when the source breaks off or holds what cannot be read; it then counts as ended.
    virtual bool advance() = 0;

    /// Presentation time of the current frame after that of the first one, in milliseconds rounded down. Always grows, but for
    /// frames that share a millisecond.
    virtual int64_t time() const = 0;

    /// Length of the whole source in milliseconds as far as it is known beforehand, for showing progress; it may be a little off.
    virtual std::optional<int64_t> duration() const { return std::nullopt; }

    /// Copies or draws the current frame; picture takes its size.
    virtual void picture(Picture& picture) = 0;

    /// True when frames come at their own pace (a camera, a network stream), so that the reader must not hold them back.
    virtual bool live() const { return false; }

    /// Makes a waiting advance() end soon. From any thread.
    virtual void cancel() { }
};

/// text: "scene:NAME" for a built-in scene, a path that ends in ".y4m", or any path, URL or "/dev/video" device that FFmpeg opens
/// (when built with it).
/// rate: frames per second of a scene (25 when not given); for Y4M in place of the rate in its header; for FFmpeg of a stream
/// without time stamps.
/// Throws SourceError.
std::unique_ptr<FrameSource> openSource(std::string const& text, std::optional<FrameRate> rate = std::nullopt);

} // namespace camera
