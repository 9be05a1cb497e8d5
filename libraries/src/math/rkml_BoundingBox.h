#pragma once

#include "math/rkml_Point2d.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_Serializable.h"

#include <tuple>

namespace rkml {

/// An upright rectangle: its top left corner and its size. T is float, int, unsigned int or double.
///
/// Binary form: the size of T (32 bits), x, y, width, height. The type id does not tell T.
template <class T> class BoundingBox : public rksl::Serializable {
public:
    T x = 0;
    T y = 0;
    T width = 0;
    T height = 0;

    BoundingBox() = default;
    BoundingBox(T left, T top, T boxWidth, T boxHeight)
        : x(left)
        , y(top)
        , width(boxWidth)
        , height(boxHeight)
    {
    }

    /// For an integer T halves of the size are cut.
    Point2D<T> centre() const { return {x + width / 2, y + height / 2}; }

    /// As fractions of a frame of that size, each held to 0 to 1. Throws rktl::Exception unless the size is positive.
    template <class U> BoundingBox<U> normalize(T frameWidth, T frameHeight) const;

    bool operator==(BoundingBox const& other) const { return fields() == other.fields(); }
    /// By x, then y, width and height, so that boxes can stand in ordered containers.
    bool operator<(BoundingBox const& other) const { return fields() < other.fields(); }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// Fields without an element of their name keep their value; other elements are skipped.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    std::tuple<T, T, T, T> fields() const { return {x, y, width, height}; }
};

template <class T> template <class U> BoundingBox<U> BoundingBox<T>::normalize(T frameWidth, T frameHeight) const
{
    if (!(frameWidth > 0 && frameHeight > 0))
        throw rktl::Exception("libraries/src/image/../math/rkml_BoundingBox", "rkml::BoundingBox",
            "normalize( .. ) - width and height must be positive");
    auto const fraction = [](T value, T whole) -> U {
        if (value >= whole)
            return 1;
        return value > 0 ? static_cast<U>(value) / static_cast<U>(whole) : 0;
    };
    return {fraction(x, frameWidth), fraction(y, frameHeight), fraction(width, frameWidth), fraction(height, frameHeight)};
}

extern template class BoundingBox<float>;
extern template class BoundingBox<int>;
extern template class BoundingBox<unsigned int>;
extern template class BoundingBox<double>;

} // namespace rkml
