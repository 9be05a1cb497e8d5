#include "camera/EventFile.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace camera {

namespace {

/// UTC with milliseconds, ISO 8601.
std::string wallClock()
{
    auto const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
    time_t const seconds = time_t(milliseconds / 1000);
    tm utc = {};
    gmtime_r(&seconds, &utc);
    char date[32], text[48];
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &utc);
    snprintf(text, sizeof text, "%s.%03dZ", date, int(milliseconds % 1000));
    return text;
}

} // namespace

void EventFile::Close::operator()(FILE* file) const
{
    if (file != stdout)
        fclose(file);
}

EventFile::EventFile(std::string const& path)
    : mFile(path == "-" ? stdout : fopen(path.c_str(), "ae"))
{
    if (!mFile)
        throw std::runtime_error("events cannot be written to " + path + ": " + std::strerror(errno));
}

bool EventFile::append(std::string_view payload)
{
    nlohmann::ordered_json const event = {{"time", wallClock()}, {"payload", payload}};
    std::string const line = event.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    return fwrite(line.data(), 1, line.size(), mFile.get()) == line.size() && fflush(mFile.get()) == 0;
}

} // namespace camera
