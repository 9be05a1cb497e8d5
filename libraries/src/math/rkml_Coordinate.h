#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

namespace rkml {

/// A coordinate in another type. To a signed integer: rounded half away from 0, held to the range; to an unsigned one: plus
/// 0.5 and cut, negative values giving 0, values from the end of the range on its largest; what is not a number gives 0.
/// To a floating type: the nearest value.
template <class U> U coordinateCast(double value)
{
    if constexpr (std::is_floating_point_v<U>) {
        return static_cast<U>(value);
    } else {
        using Limits = std::numeric_limits<U>;
        static_assert(sizeof(U) <= 4, "a double holds each value and both limits exactly");
        if (std::isnan(value))
            return 0;
        double const rounded = Limits::is_signed ? std::round(value) : std::floor(value + 0.5);
        if (rounded <= static_cast<double>(Limits::min()))
            return Limits::min();
        return rounded >= static_cast<double>(Limits::max()) ? Limits::max() : static_cast<U>(rounded);
    }
}

/// A distance out of its two components.
inline double hypotenuse(double dx, double dy)
{
    dx = std::fabs(dx);
    dy = std::fabs(dy);
    if (dx == 0.0)
        return dy;
    return dy == 0.0 ? dx : std::sqrt(dx * dx + dy * dy);
}

} // namespace rkml
