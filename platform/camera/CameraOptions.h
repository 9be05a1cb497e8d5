#pragma once

#include "camera/csdk.h"
#include "camera/sources/FrameRate.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace camera {

/// An environment variable with a value that is not understood; the text names both.
class OptionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct FrameSize {
    uint32_t width;
    uint32_t height;
    bool operator==(FrameSize const&) const = default;
};

struct DayNightStep {
    csdk_daynight mode;
    int64_t time; // ms after csdk_init
};

/// Faults to inject; see README.md.
struct Faults {
    bool init = false;
    bool noResolutions = false;
    bool setResolution = false;
    uint64_t refreshFailures = 0; // in a row
    uint64_t refreshAfter = 0;    // good refreshes before them
    uint64_t eventFailures = 0;
};

/// How the stand-in camera behaves, as the environment tells it.
struct CameraOptions {
    std::string source = "scene:street";
    std::vector<FrameSize> resolutions; // empty: what the source suggests
    std::optional<FrameRate> rate;
    bool realtime = true;
    bool loop = false;
    std::vector<DayNightStep> dayNight = {{CSDK_DAY, 0}}; // first at 0, times growing
    std::string events = "-";
    Faults faults;

    /// Reads the variables CSDK_...; one that is unset or empty keeps its default. Throws OptionError.
    static CameraOptions fromEnvironment();
};

} // namespace camera
