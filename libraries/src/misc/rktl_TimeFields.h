#pragma once

#include <cstdint>
#include <ctime>

namespace rktl {

/// The broken-down form of a moment in GMT or in local time, by the zone that the environment names now. Any thread may call.
tm timeFields(int32_t seconds, bool gmt);

/// Seconds of the epoch of broken-down local time, which is normalised; -1 where 32 bits do not hold them. tm_isdst as for
/// mktime: 0 standard time, -1 unknown.
int32_t secondsOf(tm& local);

} // namespace rktl
