#pragma once

#include "math/rkml_Point2d.h"

#include <limits>
#include <vector>

namespace rkml {

/// The straight line through two points, without ends. T is int or float.
template <class T> class Line2D {
public:
    Line2D() = default;
    Line2D(Point2D<T> const& first, Point2D<T> const& second)
        : mFirst(first)
        , mSecond(second)
    {
    }
    virtual ~Line2D() = default;
    Line2D(Line2D const&) = default;
    Line2D& operator=(Line2D const&) = default;

    Point2D<T> const& first() const { return mFirst; }
    Point2D<T> const& second() const { return mSecond; }

    /// Distance of the point, positive on the one side of the line and negative on the other; the plain distance where both
    /// ends are one point.
    double signedDistanceTo(Point2D<T> const& point) const;

    /// Where the two lines cross. Throws rktl::Exception for parallel lines.
    Point2D<T> getIntersection(Line2D const& other) const;

    /// The least-squares regression of y on x, from the smallest x to the largest; that starts at 0, so among negative x only
    /// it is 0. Points of one and the same x give the vertical line from the smallest y to the largest; no points the
    /// default line. For an integer T the ends are rounded half away from 0.
    static Line2D bestFit(std::vector<Point2D<T>> const& points);

private:
    static Line2D vertical(std::vector<Point2D<T>> const& points);

    Point2D<T> mFirst;
    Point2D<T> mSecond;
};

/// The part of the line between the two points, both included.
template <class T> class LineSegment2D : public Line2D<T> {
public:
    using Line2D<T>::Line2D;

    double length() const { return this->first().distanceTo(this->second()); }

    /// Whether the ways from the point to both ends add up to the length exactly: no tolerance is given, so on a slanting segment
    /// few points but the ends are found.
    bool contains(Point2D<T> const& point) const
    {
        return point == this->first() || point == this->second() ||
            this->first().distanceTo(point) + this->second().distanceTo(point) == length();
    }
};

/// The part of the line from the first point on, through the second.
template <class T> class Ray2D : public Line2D<T> {
public:
    using Line2D<T>::Line2D;
};

template <class T> double Line2D<T>::signedDistanceTo(Point2D<T> const& point) const
{
    if (mFirst == mSecond)
        return mFirst.distanceTo(point);
    double const x1 = mFirst.x, y1 = mFirst.y, x2 = mSecond.x, y2 = mSecond.y, px = point.x, py = point.y;
    if (x1 * (y2 - py) + x2 * (py - y1) + px * (y1 - y2) == 0.0)
        return 0.0;
    return ((x2 - x1) * (y1 - py) - (x1 - px) * (y2 - y1)) / mFirst.distanceTo(mSecond);
}

template <class T> Point2D<T> Line2D<T>::getIntersection(Line2D const& other) const
{
    double const x1 = mFirst.x, y1 = mFirst.y, x2 = mSecond.x, y2 = mSecond.y;
    double const x3 = other.mFirst.x, y3 = other.mFirst.y, x4 = other.mSecond.x, y4 = other.mSecond.y;
    double const d1x = x1 - x2, d1y = y1 - y2, d2x = x3 - x4, d2y = y3 - y4;
    double const denominator = d1x * d2y - d1y * d2x;
    if (denominator == 0.0)
        throw rktl::Exception(
            "libraries/src/image/../math/rkml_Line2d", "rkml::Line2D", "intersection() - intersection doesn't exist");
    double const c1 = x1 * y2 - y1 * x2;
    double const c2 = x3 * y4 - y3 * x4;
    return Point2D<double>((d2x * c1 - d1x * c2) / denominator, (d2y * c1 - d1y * c2) / denominator).template convert<T>();
}

template <class T> Line2D<T> Line2D<T>::bestFit(std::vector<Point2D<T>> const& points)
{
    double const n = static_cast<double>(points.size());
    double sumX = 0.0, sumY = 0.0, sumXY = 0.0, sumXX = 0.0;
    double smallest = std::numeric_limits<double>::max();
    double largest = 0.0;
    bool oneX = true;
    for (Point2D<T> const& point : points) {
        double const x = point.x, y = point.y;
        sumX += x;
        sumY += y;
        sumXY += x * y;
        sumXX += x * x;
        smallest = x < smallest ? x : smallest;
        largest = x > largest ? x : largest;
        oneX = oneX && point.x == points.front().x;
    }
    if (oneX)
        return vertical(points);
    double const slope = (n * sumXY - sumX * sumY) / (n * sumXX - sumX * sumX);
    double const offset = (sumY - slope * sumX) / n;
    return {Point2D<double>(smallest, slope * smallest + offset).template convert<T>(),
        Point2D<double>(largest, slope * largest + offset).template convert<T>()};
}

template <class T> Line2D<T> Line2D<T>::vertical(std::vector<Point2D<T>> const& points)
{
    if (points.empty())
        return {};
    Line2D line(points.front(), points.front());
    for (Point2D<T> const& point : points) {
        line.mFirst.y = point.y < line.mFirst.y ? point.y : line.mFirst.y;
        line.mSecond.y = point.y > line.mSecond.y ? point.y : line.mSecond.y;
    }
    return line;
}

} // namespace rkml
