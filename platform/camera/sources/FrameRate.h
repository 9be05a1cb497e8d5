#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace camera {

/// Frames per second as a fraction, so that the time of a frame is exact however long the video.
struct FrameRate {
    uint32_t numerator = 25;
    uint32_t denominator = 1;

    /// Presentation time of frame n (from 0), in whole milliseconds, rounded down.
    int64_t time(uint64_t n) const { return int64_t(n * 1000 * denominator / numerator); }

    /// "25", "12.5" (at most three decimals) or "30000/1001"; nothing unless the rate is from 0.001 to 1000 frames per second.
    static std::optional<FrameRate> parse(std::string const& text);

    bool operator==(FrameRate const&) const = default;
};

} // namespace camera
