#include "camera/CameraOptions.h"

#include "camera/sources/Picture.h"

#include <charconv>
#include <cstdlib>
#include <limits>

namespace camera {

namespace {

std::string variable(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

[[noreturn]] void refuse(char const* name, std::string const& value, char const* expected)
{
    throw OptionError(std::string(name) + "=" + value + ": expected " + expected);
}

std::vector<std::string> split(std::string const& text, char separator)
{
    std::vector<std::string> parts;
    size_t begin = 0;
    for (size_t end; (end = text.find(separator, begin)) != std::string::npos; begin = end + 1)
        parts.push_back(text.substr(begin, end - begin));
    parts.push_back(text.substr(begin));
    return parts;
}

/// The whole text as a decimal number up to limit.
std::optional<uint64_t> number(std::string const& text, uint64_t limit)
{
    uint64_t value = 0;
    auto const [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || rest != text.data() + text.size() || value > limit)
        return std::nullopt;
    return value;
}

bool readFlag(char const* name)
{
    std::string const value = variable(name);
    if (value != "" && value != "0" && value != "1")
        refuse(name, value, "0 or 1");
    return value == "1";
}

std::vector<FrameSize> readResolutions(char const* name)
{
    std::vector<FrameSize> sizes;
    std::string const value = variable(name);
    if (value.empty())
        return sizes;
    for (std::string const& part : split(value, ',')) {
        auto const sides = split(part, 'x');
        std::optional<uint64_t> width, height;
        if (sides.size() == 2) {
            width = number(sides[0], MAX_PIXELS);
            height = number(sides[1], MAX_PIXELS);
        }
        if (!width || !height || *width == 0 || *height == 0 || *width * *height > MAX_PIXELS)
            refuse(name, value, "sizes such as 640x480,320x240, of 4096x4096 pixels at most");
        sizes.push_back({uint32_t(*width), uint32_t(*height)});
    }
    return sizes;
}

std::vector<DayNightStep> readDayNight(char const* name)
{
    char const* const expected = "day, night, or a schedule such as day@0,night@30: seconds that grow, from 0";
    std::string const value = variable(name);
    std::vector<DayNightStep> steps;
    if (value.empty())
        return CameraOptions().dayNight;
    for (std::string const& part : split(value, ',')) {
        size_t const at = part.find('@');
        std::string const mode = part.substr(0, at);
        // Decimals as in 0.5, so that a test need not wait.
        double seconds = 0;
        if (at != std::string::npos) {
            auto const [rest, error] = std::from_chars(part.data() + at + 1, part.data() + part.size(), seconds);
            if (error != std::errc() || rest != part.data() + part.size() || !(seconds >= 0 && seconds <= 1e6))
                refuse(name, value, expected);
        }
        int64_t const time = int64_t(seconds * 1000 + 0.5);
        bool const inOrder = steps.empty() ? time == 0 : at != std::string::npos && time > steps.back().time;
        if (!inOrder || (mode != "day" && mode != "night"))
            refuse(name, value, expected);
        steps.push_back({mode == "day" ? CSDK_DAY : CSDK_NIGHT, time});
    }
    return steps;
}

/// "NAME", "NAME:COUNT" or "NAME:COUNT@AFTER". False unless part begins with that name.
bool countedFault(std::string const& part, std::string const& name, uint64_t& count, uint64_t* after, bool& valid)
{
    if (part != name && !part.starts_with(name + ":"))
        return false;
    count = std::numeric_limits<uint64_t>::max();
    if (part == name)
        return true;
    std::string const numbers = part.substr(name.size() + 1);
    size_t const at = numbers.find('@');
    auto const first = number(numbers.substr(0, at), std::numeric_limits<uint64_t>::max());
    auto const second = at == std::string::npos ? 0 : number(numbers.substr(at + 1), std::numeric_limits<uint64_t>::max());
    valid = first && second && (after != nullptr || at == std::string::npos);
    if (valid) {
        count = *first;
        if (after != nullptr)
            *after = *second;
    }
    return true;
}

Faults readFaults(char const* name)
{
    Faults result;
    std::string const value = variable(name);
    if (value.empty() || value == "none")
        return result;
    for (std::string const& part : split(value, ',')) {
        bool valid = true;
        if (part == "init")
            result.init = true;
        else if (part == "no-resolutions")
            result.noResolutions = true;
        else if (part == "set-resolution")
            result.setResolution = true;
        else if (!countedFault(part, "refresh", result.refreshFailures, &result.refreshAfter, valid) &&
            !countedFault(part, "event", result.eventFailures, nullptr, valid))
            valid = false;
        if (!valid)
            refuse(name, value,
                "init, no-resolutions, set-resolution, refresh:N, refresh:N@AFTER, event or event:N, separated by commas");
    }
    return result;
}

} // namespace

CameraOptions CameraOptions::fromEnvironment()
{
    CameraOptions options;
    if (std::string const source = variable("CSDK_SOURCE"); !source.empty())
        options.source = source;
    options.resolutions = readResolutions("CSDK_RESOLUTIONS");
    if (std::string const rate = variable("CSDK_FPS"); !rate.empty()) {
        options.rate = FrameRate::parse(rate);
        if (!options.rate)
            refuse("CSDK_FPS", rate, "frames per second such as 25, 12.5 or 30000/1001, from 0.001 to 1000");
    }
    if (std::string const pace = variable("CSDK_PACE"); !pace.empty()) {
        if (pace != "realtime" && pace != "fast")
            refuse("CSDK_PACE", pace, "realtime or fast");
        options.realtime = pace == "realtime";
    }
    options.loop = readFlag("CSDK_LOOP");
    options.dayNight = readDayNight("CSDK_DAYNIGHT");
    if (std::string const events = variable("CSDK_EVENTS"); !events.empty())
        options.events = events;
    options.faults = readFaults("CSDK_FAULTS");
    return options;
}

} // namespace camera
