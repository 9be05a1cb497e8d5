#pragma once

#include "math/rkml_BoundingBox.h"
#include "math/rkml_Line2d.h"
#include "math/rkml_Point2d.h"
#include "streams/rksl_Serializable.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace rkml {

/// A closed polygon: its corners in drawing order, the last joined to the first. T is float, int, unsigned int or double.
///
/// Binary form: the size of T (16 bits), the number of points (16 bits), the points in their own form. getBinLength answers
/// 2 bytes more than toBin writes: a frame sized by it ends in two bytes that fromBin does not read.
template <class T> class Polygon2D : public rksl::Serializable {
public:
    class const_iterator;

    Polygon2D() = default;
    explicit Polygon2D(std::vector<Point2D<T>> points)
        : mPoints(std::move(points))
    {
    }

    /// The corners of the box, from the top left one on clockwise in an image.
    explicit Polygon2D(BoundingBox<T> const& box)
        : mPoints{
              {box.x, box.y}, {box.x + box.width, box.y}, {box.x + box.width, box.y + box.height}, {box.x, box.y + box.height}}
    {
    }

    /// Each coordinate as by coordinateCast.
    template <class U> explicit Polygon2D(Polygon2D<U> const& other) { *this = other; }
    template <class U> Polygon2D& operator=(Polygon2D<U> const& other);

    /// In pixels of a frame of that size. When a coordinate of any point lies outside of 0 to 1, the whole polygon counts as in
    /// pixels already. Throws rktl::Exception for a normalised polygon unless width and height are positive.
    Polygon2D<int> denormalize(int width, int height) const;

    std::vector<Point2D<T>> const& points() const { return mPoints; }
    std::vector<Point2D<T>>& points() { return mPoints; }

    /// A walk around the corners that never ends; on a polygon without points it stands on none.
    const_iterator begin() const { return const_iterator(*this); }

    /// By the even-odd rule; a point whose x is that of an edge at its row is inside, a row that only touches the lower end of
    /// the edges is not. Throws rktl::Exception with fewer than 3 points.
    bool contains(T x, T y) const;

    /// list: becomes the edges, one from each point to the next. Throws rktl::Exception with fewer than 3 points.
    void getSegments(std::vector<LineSegment2D<T>>& list) const;

    /// From the smallest to the largest coordinates. Throws rktl::Exception with fewer than 3 points.
    BoundingBox<T> boundingbox() const;

    bool operator==(Polygon2D const& other) const { return mPoints == other.mPoints; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// With elements called itemTag for the points.
    rktl::String toXML(char const* tag, char const* itemTag) const;
    /// Reads each child as a point, whatever it is called; what is no point is skipped. False, the polygon left as it was,
    /// where xml is no element.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    /// Throws rktl::Exception for more than 65535 points.
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    void requireArea(char const* failure) const;

    std::vector<Point2D<T>> mPoints;
};

/// Steps around a polygon, from the last point to the first. The polygon must outlive it.
template <class T> class Polygon2D<T>::const_iterator {
public:
    /// Stands on no point.
    const_iterator() = default;
    explicit const_iterator(Polygon2D const& polygon)
        : mPolygon(&polygon)
    {
    }

    Point2D<T> const& operator*() const { return point("operator*() - iterator pointing to an invalid polygon"); }
    Point2D<T> const* operator->() const { return &**this; }

    /// Throws rktl::Exception on an iterator that stands on no point.
    const_iterator& operator++();

    bool operator==(const_iterator const& other) const { return mPolygon == other.mPolygon && mIndex == other.mIndex; }

private:
    Point2D<T> const& point(char const* failure) const;

    Polygon2D const* mPolygon = nullptr;
    size_t mIndex = 0;
};

template <class T> template <class U> Polygon2D<T>& Polygon2D<T>::operator=(Polygon2D<U> const& other)
{
    mPoints.clear();
    mPoints.reserve(other.points().size());
    for (Point2D<U> const& point : other.points())
        mPoints.push_back(point.template convert<T>());
    return *this;
}

template <class T> Polygon2D<int> Polygon2D<T>::denormalize(int width, int height) const
{
    if (!std::all_of(mPoints.begin(), mPoints.end(), [](auto const& point) { return point.isNormalized(); }))
        return Polygon2D<int>(*this);
    Polygon2D<int> pixels;
    for (Point2D<T> const& point : mPoints)
        pixels.points().push_back(point.template denormalize<int>(width, height));
    return pixels;
}

extern template class Polygon2D<float>;
extern template class Polygon2D<int>;
extern template class Polygon2D<unsigned int>;
extern template class Polygon2D<double>;

} // namespace rkml
