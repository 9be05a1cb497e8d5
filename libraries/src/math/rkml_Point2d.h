#pragma once

#include "math/rkml_Coordinate.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_Serializable.h"

#include <cmath>
#include <type_traits>

namespace rkml {

/// A point of the plane. T is float, int, unsigned int or double.
///
/// A point in floats is either normalised, as fractions of a frame's width and height, or already in pixels.
///
/// Binary form: the size of T (32 bits), x, y. The type id does not tell T: reader and writer have to agree on it.
template <class T> class Point2D : public rksl::Serializable {
public:
    T x = 0;
    T y = 0;

    Point2D() = default;
    Point2D(T xValue, T yValue)
        : x(xValue)
        , y(yValue)
    {
    }

    /// Both coordinates lie from 0 to 1, limits included.
    bool isNormalized() const { return x >= 0 && x <= 1 && y >= 0 && y <= 1; }

    bool isFinite() const { return std::isfinite(static_cast<double>(x)) && std::isfinite(static_cast<double>(y)); }

    /// The point in pixels of a frame of that size. A point with a coordinate above 1 counts as in pixels already and is only
    /// converted, as coordinateCast does. The products are in single precision for an integer U.
    /// Throws rktl::Exception unless width and height are positive.
    template <class U> Point2D<U> denormalize(U width, U height) const;

    /// Each coordinate by coordinateCast.
    template <class U> Point2D<U> convert() const
    {
        return {coordinateCast<U>(static_cast<double>(x)), coordinateCast<U>(static_cast<double>(y))};
    }

    double distanceTo(Point2D const& other) const
    {
        return hypotenuse(
            static_cast<double>(x) - static_cast<double>(other.x), static_cast<double>(y) - static_cast<double>(other.y));
    }

    bool operator==(Point2D const& other) const { return x == other.x && y == other.y; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// <tag x="0.5" y="0.25" />, with six significant digits.
    rktl::String toXML(char const* tag) const override;
    /// False, the point left as it was, unless both attributes are there.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;
};

template <class T> template <class U> Point2D<U> Point2D<T>::denormalize(U width, U height) const
{
    if (!(width > 0 && height > 0))
        throw rktl::Exception(
            "libraries/src/image/../math/rkml_Point2d", "rkml::Point2D", "denormalize( .. ) - width and height must be positive");
    if (x > 1 || y > 1)
        return convert<U>();
    using Product = std::conditional_t<std::is_integral_v<U>, float, double>;
    return {coordinateCast<U>(static_cast<Product>(x) * static_cast<Product>(width)),
        coordinateCast<U>(static_cast<Product>(y) * static_cast<Product>(height))};
}

extern template class Point2D<float>;
extern template class Point2D<int>;
extern template class Point2D<unsigned int>;
extern template class Point2D<double>;

} // namespace rkml
