#pragma once

#include "misc/rktl_Exception.h"

#include <algorithm>
#include <vector>

namespace rkml {

inline constexpr double PI = 3.141592653589793; // the double nearest to it
inline constexpr double TWO_PI = PI + PI;
inline constexpr double DEG_TO_RAD = PI / 180.0;
inline constexpr double RAD_TO_DEG = 180.0 / PI;

/// The middle value, or for an even count the mean of the two middle ones in double precision, cut to T. Sorts values.
/// T is double, int or unsigned char. Throws rktl::Exception for an empty vector.
template <class T> T median(std::vector<T>& values)
{
    if (values.empty())
        throw rktl::Exception(
            "libraries/src/misc/../math/rkml_Utility", "rkml::median", "Cannot take the median of an empty vector.");
    std::sort(values.begin(), values.end());
    size_t const middle = values.size() / 2;
    if (values.size() % 2 == 1)
        return values[middle];
    return static_cast<T>((static_cast<double>(values[middle - 1]) + static_cast<double>(values[middle])) * 0.5);
}

} // namespace rkml
