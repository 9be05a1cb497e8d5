#include "misc/rktl_TimeFields.h"

#include <limits>

namespace rktl {

tm timeFields(int32_t seconds, bool gmt)
{
    time_t const time = seconds;
    tm fields = {};
    if (gmt) {
        gmtime_r(&time, &fields);
    } else {
        tzset(); // localtime_r need not notice a change of the zone
        localtime_r(&time, &fields);
    }
    return fields;
}

int32_t secondsOf(tm& local)
{
    int64_t const seconds = mktime(&local);
    using Limits = std::numeric_limits<int32_t>;
    return seconds < Limits::min() || seconds > Limits::max() ? -1 : static_cast<int32_t>(seconds);
}

} // namespace rktl
