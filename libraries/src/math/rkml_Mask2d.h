#pragma once

#include "math/rkml_BoundingBox.h"
#include "math/rkml_Point2d.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_ArrayRegionItr.h"
#include "misc/rktl_DimArray.h"
#include "misc/rktl_Exception.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace rkml {

/// A rectangle of values placed in the plane, and one value for everything outside it. T is int or bool.
///
/// Drawing a polygon tests each cell of its bounding box, which is meant for set-up. Asking for an overlap with the value that
/// was drawn last takes four look-ups (a table of sums: F. C. Crow, Summed-Area Tables for Texture Mapping, 1984), with any other
/// value, and with an array of more than 2^22 cells, a walk over the box.
template <class T> class Mask2D {
public:
    /// Empty: everywhere defaultValue.
    explicit Mask2D(T defaultValue)
        : mDefault(defaultValue)
    {
    }
    virtual ~Mask2D() = default;
    Mask2D(Mask2D const&) = default;
    Mask2D& operator=(Mask2D const&) = default;

    /// Gives value to the cells that the polygon contains; the last column and the last row of its bounding box are left out.
    /// The array grows to the union of the rectangles where needed. False, and nothing is changed, for fewer than 3 points.
    /// Throws rktl::Exception, and nothing is changed, where the array would have more than 2^26 cells.
    template <class U> bool addPolygon(Polygon2D<U> const& polygon, T value);

    /// The same for the part of the polygon within clip: nothing outside of that is drawn, and the array does not grow there.
    template <class U> bool addPolygon(Polygon2D<U> const& polygon, T value, BoundingBox<int> const& clip);

    /// The value of a place.
    T at(int x, int y) const
    {
        return covered().contains(x, y)
            ? mArray->at(static_cast<unsigned int>(x - mOrigin.x), static_cast<unsigned int>(y - mOrigin.y))
            : mDefault;
    }

    /// The share of the box's cells that hold value, 0 to 1. A box that the array does not touch holds the default all over.
    template <class U> double getOverlap(BoundingBox<U> const& box, T value) const;

private:
    // In 64 bits, since the right edge of a box of 32-bit numbers may lie beyond them.
    struct Rectangle {
        int64_t left = 0;
        int64_t top = 0;
        int64_t right = 0;  // behind the last column
        int64_t bottom = 0; // behind the last row

        int64_t width() const { return right - left; }
        int64_t height() const { return bottom - top; }
        bool contains(int64_t x, int64_t y) const { return x >= left && x < right && y >= top && y < bottom; }
        bool contains(Rectangle const& inner) const
        {
            return inner.left >= left && inner.right <= right && inner.top >= top && inner.bottom <= bottom;
        }
    };

    static constexpr int64_t MAX_CELLS = int64_t(1) << 26;
    static constexpr int64_t MAX_SUMMED = int64_t(1) << 22;

    static Rectangle rectangleOf(BoundingBox<int> const& box)
    {
        return {box.x, box.y, int64_t(box.x) + box.width, int64_t(box.y) + box.height};
    }
    static Rectangle boundsOf(Polygon2D<int> const& polygon);
    Rectangle covered() const;
    void draw(Polygon2D<int> const& polygon, Rectangle const& drawn, T value);
    void drawInPlace(Polygon2D<int> const& polygon, Rectangle const& area, T value);
    void drawGrown(Polygon2D<int> const& polygon, Rectangle const& area, T value);
    void sumUp(T value);
    int64_t countHolding(Rectangle const& inside, T value) const;
    double defaultShare(T value) const { return value == mDefault ? 1.0 : 0.0; }

    Point2D<int> mOrigin; // top left corner of the array
    T mDefault;
    std::optional<rktl::DimArray<T, 2>> mArray;
    // Row by row, how many cells above and to the left of a corner hold mSummed; one more column and row than the array. Empty
    // where the array is too large.
    std::vector<uint32_t> mSums;
    T mSummed = T();
};

template <class T> template <class U> bool Mask2D<T>::addPolygon(Polygon2D<U> const& polygon, T value)
{
    if (polygon.points().size() < 3)
        return false;
    Polygon2D<int> const pixels(polygon);
    draw(pixels, boundsOf(pixels), value);
    return true;
}

template <class T>
template <class U>
bool Mask2D<T>::addPolygon(Polygon2D<U> const& polygon, T value, BoundingBox<int> const& clip)
{
    if (polygon.points().size() < 3)
        return false;
    Polygon2D<int> const pixels(polygon);
    Rectangle const whole = boundsOf(pixels);
    Rectangle const limit = rectangleOf(clip);
    Rectangle const drawn = {std::max(whole.left, limit.left), std::max(whole.top, limit.top), std::min(whole.right, limit.right),
        std::min(whole.bottom, limit.bottom)};
    if (drawn.width() > 0 && drawn.height() > 0)
        draw(pixels, drawn, value);
    return true;
}

/// Without the last column and row.
template <class T> typename Mask2D<T>::Rectangle Mask2D<T>::boundsOf(Polygon2D<int> const& polygon)
{
    Point2D<int> const& first = polygon.points().front();
    Rectangle bounds = {first.x, first.y, first.x, first.y};
    for (Point2D<int> const& point : polygon.points())
        bounds = {std::min<int64_t>(bounds.left, point.x), std::min<int64_t>(bounds.top, point.y),
            std::max<int64_t>(bounds.right, point.x), std::max<int64_t>(bounds.bottom, point.y)};
    return bounds;
}

template <class T> void Mask2D<T>::draw(Polygon2D<int> const& polygon, Rectangle const& drawn, T value)
{
    if (mArray && covered().contains(drawn)) {
        drawInPlace(polygon, drawn, value);
        sumUp(value);
        return;
    }
    Rectangle area = drawn;
    if (mArray) {
        Rectangle const old = covered();
        area = {std::min(old.left, drawn.left), std::min(old.top, drawn.top), std::max(old.right, drawn.right),
            std::max(old.bottom, drawn.bottom)};
    }
    drawGrown(polygon, area, value);
    sumUp(value);
}

template <class T> void Mask2D<T>::drawInPlace(Polygon2D<int> const& polygon, Rectangle const& area, T value)
{
    for (int64_t y = area.top; y < area.bottom; ++y)
        for (int64_t x = area.left; x < area.right; ++x)
            if (polygon.contains(static_cast<int>(x), static_cast<int>(y)))
                mArray->at(static_cast<unsigned int>(x - mOrigin.x), static_cast<unsigned int>(y - mOrigin.y)) = value;
}

template <class T> void Mask2D<T>::drawGrown(Polygon2D<int> const& polygon, Rectangle const& area, T value)
{
    if (area.width() != 0 && area.height() > MAX_CELLS / area.width())
        throw rktl::Exception("libraries/src/math/rkml_Mask2d", "rkml::Mask2D", "addPolygon( .. ) - polygon is too large");
    rktl::DimArray<T, 2> grown({static_cast<unsigned int>(area.width()), static_cast<unsigned int>(area.height())});
    Rectangle const old = covered();
    T* cell = grown.data();
    for (int64_t y = area.top; y < area.bottom; ++y)
        for (int64_t x = area.left; x < area.right; ++x, ++cell) {
            if (polygon.contains(static_cast<int>(x), static_cast<int>(y)))
                *cell = value;
            else if (old.contains(x, y))
                *cell = mArray->at(static_cast<unsigned int>(x - old.left), static_cast<unsigned int>(y - old.top));
            else
                *cell = mDefault;
        }
    mArray = std::move(grown);
    mOrigin = {static_cast<int>(area.left), static_cast<int>(area.top)};
}

template <class T> template <class U> double Mask2D<T>::getOverlap(BoundingBox<U> const& box, T value) const
{
    if (!mArray)
        return defaultShare(value);
    Rectangle const whole = covered();
    Rectangle const inside = {std::clamp<int64_t>(box.x, whole.left, whole.right),
        std::clamp<int64_t>(box.y, whole.top, whole.bottom),
        std::clamp<int64_t>(int64_t(box.x) + box.width, whole.left, whole.right),
        std::clamp<int64_t>(int64_t(box.y) + box.height, whole.top, whole.bottom)};
    if (inside.width() <= 0 || inside.height() <= 0)
        return defaultShare(value);

    int64_t const area = int64_t(box.width) * box.height;
    int64_t const outside = value == mDefault ? area - inside.width() * inside.height() : 0;
    int64_t const holding = outside +
        countHolding(
            {inside.left - whole.left, inside.top - whole.top, inside.right - whole.left, inside.bottom - whole.top}, value);
    return holding < area ? static_cast<double>(holding) / static_cast<double>(area) : 1.0;
}

template <class T> void Mask2D<T>::sumUp(T value)
{
    mSums.clear();
    mSummed = value;
    int64_t const columns = covered().width(), rows = covered().height();
    if (columns * rows > MAX_SUMMED)
        return;
    size_t const stride = static_cast<size_t>(columns) + 1;
    mSums.resize(stride * (static_cast<size_t>(rows) + 1));
    T const* cell = mArray->data();
    for (size_t corner = stride; corner < mSums.size(); ++corner) {
        uint32_t inRow = 0;
        for (size_t const end = corner + stride - 1; corner < end; ++cell) {
            inRow += *cell == value ? 1 : 0;
            ++corner;
            mSums[corner] = mSums[corner - stride] + inRow;
        }
    }
}

/// inside: of the array, in its own coordinates.
template <class T> int64_t Mask2D<T>::countHolding(Rectangle const& inside, T value) const
{
    if (value == mSummed && !mSums.empty()) {
        size_t const stride = static_cast<size_t>(covered().width()) + 1;
        auto const sum = [&](int64_t x, int64_t y) -> int64_t {
            return mSums[static_cast<size_t>(y) * stride + static_cast<size_t>(x)];
        };
        return sum(inside.right, inside.bottom) - sum(inside.left, inside.bottom) - sum(inside.right, inside.top) +
            sum(inside.left, inside.top);
    }
    int64_t holding = 0;
    rktl::ConstArrayRegionItr<T, 2> cell(&*mArray,
        {static_cast<unsigned int>(inside.left), static_cast<unsigned int>(inside.top)},
        {static_cast<unsigned int>(inside.width()), static_cast<unsigned int>(inside.height())});
    for (; !cell.isFinished(); cell.inc())
        holding += *cell.ptrCurrPos() == value ? 1 : 0;
    return holding;
}

template <class T> typename Mask2D<T>::Rectangle Mask2D<T>::covered() const
{
    if (!mArray)
        return {};
    return {mOrigin.x, mOrigin.y, int64_t(mOrigin.x) + mArray->size(0), int64_t(mOrigin.y) + mArray->size(1)};
}

} // namespace rkml
