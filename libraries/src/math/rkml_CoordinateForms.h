#pragma once

#include "math/rkml_Coordinate.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <type_traits>

// One coordinate in XML and in binary forms. T is float, int, unsigned int or double.

namespace rkml {

/// Whole numbers as they are, others with six significant digits.
template <class T> rktl::String coordinateToText(T value)
{
    if constexpr (std::is_integral_v<T>)
        return std::to_string(value);
    else
        return rktl::String::fromFormat("%g", static_cast<double>(value));
}

/// The decimal number that text begins with, 0 for none; cut and held to the range for a whole T.
template <class T> T coordinateFromText(rktl::String const& text)
{
    if constexpr (std::is_same_v<T, float>)
        return std::strtof(text.c_str(), nullptr);
    else if constexpr (std::is_floating_point_v<T>)
        return std::strtod(text.c_str(), nullptr);
    else
        return coordinateCast<T>(std::trunc(std::strtod(text.c_str(), nullptr)));
}

template <class T> void writeCoordinate(rksl::ByteWriter& out, T value)
{
    if constexpr (std::is_same_v<T, float>)
        out.f32(value);
    else if constexpr (std::is_same_v<T, double>)
        out.f64(value);
    else
        out.u32(static_cast<uint32_t>(value));
}

template <class T> T readCoordinate(rksl::ByteReader& in)
{
    if constexpr (std::is_same_v<T, float>)
        return in.f32();
    else if constexpr (std::is_same_v<T, double>)
        return in.f64();
    else
        return static_cast<T>(in.u32());
}

} // namespace rkml
