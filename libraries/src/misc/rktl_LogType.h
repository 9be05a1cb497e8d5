#pragma once

#include <cstdint>

namespace rktl {

class String;

/// The level of a log line. All levels are written; other values are allowed and show no word.
enum class LogType : int32_t {
    Critical = -2,
    Error = -1,
    Warning = 0,
    Status = 1,
    Info = 2,
};

/// The word that a line shows: "CRIT", "ERR", "WARN", "STAT", "INFO", or an empty one.
String toString(LogType type);

} // namespace rktl
