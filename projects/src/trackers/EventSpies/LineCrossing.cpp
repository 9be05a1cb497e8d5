#include "trackers/EventSpies/LineCrossing.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Bits of TrippedObj::mTriggers; the corners are bits 0 to 3.
constexpr uint32_t centreBit = 16;
constexpr uint32_t directionBit = 32; // the direction was right in this evaluation
constexpr uint32_t allPoints = 31;

constexpr double clearance = 1.0; // pixels

constexpr int ordinary = 1 << 15; // pixels either way; beyond it whole pixels and their products are not exact in each step

bool isOrdinary(rkml::BoundingBox<int> const& box)
{
    auto const isWithin = [](int value) { return value >= -ordinary && value <= ordinary; };
    return isWithin(box.x) && isWithin(box.y) && box.width >= 0 && box.width <= ordinary && box.height >= 0 &&
        box.height <= ordinary;
}

template <class T> bool isOrdinary(rkml::Point2D<T> const& point)
{
    return std::fabs(point.x) <= ordinary && std::fabs(point.y) <= ordinary;
}

constexpr float probeDistance = 100.0f; // pixels from the line to the point that tells its sides apart

/// A corner has its bit at its index: top left, top right, bottom left, bottom right.
template <class T> std::array<rkml::Point2D<T>, 4> cornersOf(rkml::BoundingBox<int> const& box)
{
    T const left = static_cast<T>(box.x), right = static_cast<T>(box.x + box.width);
    T const top = static_cast<T>(box.y), bottom = static_cast<T>(box.y + box.height);
    return {{{left, top}, {right, top}, {left, bottom}, {right, bottom}}};
}

/// Within the upright rectangle between the ends, sides included.
template <class T> bool isBetween(rkml::Point2D<T> const& point, rkml::Point2D<T> const& a, rkml::Point2D<T> const& b)
{
    return point.x >= std::min(a.x, b.x) && point.x <= std::max(a.x, b.x) && point.y >= std::min(a.y, b.y) &&
        point.y <= std::max(a.y, b.y);
}

/// In the precision of F. Products are compared and not subtracted: a fused multiplication would find a rest.
template <class F, class T> bool areParallel(rkml::Line2D<T> const& a, rkml::Line2D<T> const& b)
{
    F const ax = static_cast<F>(a.first().x) - static_cast<F>(a.second().x);
    F const ay = static_cast<F>(a.first().y) - static_cast<F>(a.second().y);
    F const bx = static_cast<F>(b.first().x) - static_cast<F>(b.second().x);
    F const by = static_cast<F>(b.first().y) - static_cast<F>(b.second().y);
    return ax * by == ay * bx;
}

/// Where a movement meets the line, if it does so between its two places. The rule is that of single precision; the crossing
/// itself is computed in double and has to exist there too.
template <class T> std::optional<rkml::Point2D<T>> crossing(rkml::Line2D<T> const& movement, rkml::Line2D<T> const& line)
{
    if (areParallel<T>(movement, line) || areParallel<double>(movement, line))
        return {};
    rkml::Point2D<T> const place = movement.getIntersection(line);
    if (!isBetween(place, movement.first(), movement.second()))
        return {};
    return place;
}

} // namespace

template <class T> bool LineCrossing<T>::setDirection(int32_t direction)
{
    mDirectionSign = 0;
    if (direction < bothWays || direction > leftOrAbove)
        return false;
    mDirection = direction;
    return true;
}

template <class T> void LineCrossing<T>::setSegment(rkml::LineSegment2D<T> const& segment)
{
    mTrippedObjects.clear();
    if (segment.length() == 0.0)
        return;
    mSegment = segment;
    makePixelLine();
    mDirectionSign = 0;
}

template <class T> void LineCrossing<T>::setFrameSize(unsigned int width, unsigned int height)
{
    int32_t const newWidth = static_cast<int32_t>(width), newHeight = static_cast<int32_t>(height);
    if (newWidth <= 0 || newHeight <= 0 || (newWidth == mLineWidth && newHeight == mLineHeight))
        return;
    mLineWidth = newWidth;
    mLineHeight = newHeight;
    makePixelLine();
}

template <class T> void LineCrossing<T>::forgetObjects()
{
    mTrippedObjects.clear();
    mStartPosition = rktl::ElapsedTime(-1);
}

/// In whole pixels.
template <class T> void LineCrossing<T>::makePixelLine()
{
    bool const isNormalized = mSegment.first().isNormalized() && mSegment.second().isNormalized();
    auto const toPixels = [&](Point const& point) {
        rkml::Point2D<int> const pixels =
            isNormalized ? point.template denormalize<int>(mLineWidth, mLineHeight) : point.template convert<int>();
        return Point(static_cast<T>(pixels.x), static_cast<T>(pixels.y));
    };
    mLine = rkml::LineSegment2D<T>(toPixels(mSegment.first()), toPixels(mSegment.second()));
    mInfiniteLine = Line(mLine.first(), mLine.second());
    mLineLength = mLine.length();
    mNormalX = mNormalY = mOffset = 0.0;
    Point const &first = mLine.first(), &second = mLine.second();
    if (mLineLength == 0.0 || !isOrdinary(first) || !isOrdinary(second))
        return;
    mNormalX = (double(first.y) - double(second.y)) / mLineLength;
    mNormalY = (double(second.x) - double(first.x)) / mLineLength;
    mOffset = -(mNormalX * double(first.x) + mNormalY * double(first.y));
}

/// The sides of a steep line are probed to the left of its first point, those of a flat one above it.
template <class T> void LineCrossing<T>::calculateDirectionSign()
{
    Point probe = mLine.first();
    T const dx = mLine.second().x - probe.x, dy = mLine.second().y - probe.y;
    bool const isFlat = dx != 0 && (dy == 0 || std::fabs(dy / dx) <= T(1));
    (isFlat ? probe.y : probe.x) -= T(probeDistance);
    mDirectionSign = mDirection == leftOrAbove ? sideOf(probe) : -sideOf(probe);
}

/// Anywhere for a box that is too large or too far away to be sure.
template <class T> inline typename LineCrossing<T>::Reach LineCrossing<T>::reachOf(rkml::BoundingBox<int> const& box) const
{
    if (!isOrdinary(box))
        return {};
    double const corner = mNormalX * box.x + mNormalY * box.y + mOffset;
    double const across = mNormalX * box.width, down = mNormalY * box.height;
    return {corner + std::min(across, 0.0) + std::min(down, 0.0), corner + std::max(across, 0.0) + std::max(down, 0.0)};
}

/// True only where both boxes lie wholly on one and the same side of the unbounded line, a pixel from it or more: then no point
/// of them was on the line or crossed it, and all are on one side of it, by far more than rounding could move.
template <class T> inline bool LineCrossing<T>::areClear(Reach const& before, Reach const& now)
{
    return std::min(before.least, now.least) >= clearance || std::max(before.most, now.most) <= -clearance;
}

template <class T> bool LineCrossing<T>::checkObject(Sighting const& seen, TrippedObj& tripped)
{
    if (mLineLength == 0.0 || !seen.hasPath)
        return false;
    rkml::BoundingBox<int> const& box = seen.box;
    tripped.mMaxDistance = std::max(tripped.mMaxDistance, seen.travelPixels);

    uint32_t& flags = tripped.mTriggers;
    Reach const reach = reachOf(box);
    if (mDirection != bothWays && mDirectionSign == 0)
        calculateDirectionSign();
    if (areClear(tripped.mReach, reach)) { // as with most objects at most times
        flags &= allPoints;
        bool const isCounted = (flags & (mCrossLine != 0 ? centreBit : allPoints)) != 0;
        if (isCounted && mDirection != bothWays && mDirectionSign == (reach.least > 0.0 ? -1 : 1))
            flags |= directionBit;
        tripped.mBox = box;
        tripped.mReach = reach;
        return isTripped(flags);
    }
    return checkNear(box, reach, tripped);
}

/// Of a box that may touch the line, or may have crossed it.
template <class T> bool LineCrossing<T>::checkNear(rkml::BoundingBox<int> const& box, Reach const& reach, TrippedObj& tripped)
{
    uint32_t& flags = tripped.mTriggers;
    std::array<Point, 4> const corners = cornersOf<T>(box);
    Point const centre = box.centre().template convert<T>();
    auto const isOnLine = [this](Point const& point) {
        double const distance = mNormalX * double(point.x) + mNormalY * double(point.y) + mOffset;
        return std::fabs(distance) < clearance && mLine.contains(point);
    };
    // Judged from the old box once the object has left the line.
    if (isOnLine(centre) || std::any_of(corners.begin(), corners.end(), isOnLine))
        return false;

    std::optional<Point> const place = crossing(Line(tripped.mBox.centre().template convert<T>(), centre), Line(mLine));
    if (place && isBetween(*place, mLine.first(), mLine.second()))
        flags ^= centreBit;
    flags &= ~directionBit;
    updateDirectionTrigger(centre, centreBit, flags);
    std::array<Point, 4> const oldCorners = cornersOf<T>(tripped.mBox);
    for (size_t i = 0; i < corners.size(); ++i) {
        checkIntersection(oldCorners[i], corners[i], 1u << i, flags);
        updateDirectionTrigger(corners[i], 1u << i, flags);
    }
    tripped.mBox = box;
    tripped.mReach = reach;
    return isTripped(flags);
}

template <class T>
void LineCrossing<T>::checkIntersection(Point const& from, Point const& to, uint32_t bits, uint32_t& flags) const
{
    std::optional<Point> const place = crossing(Line(from, to), mCrossLine != 0 ? mInfiniteLine : Line(mLine));
    if (place && (mCrossLine != 0 || isBetween(*place, mLine.first(), mLine.second())))
        flags ^= bits;
}

/// The centre always counts for the direction, a corner only where one point is enough.
template <class T> void LineCrossing<T>::updateDirectionTrigger(Point const& point, uint32_t bits, uint32_t& flags) const
{
    if (mDirection == bothWays || !(flags & bits) || (bits != centreBit && mCrossLine != 0))
        return;
    if (sideOf(point) == mDirectionSign)
        flags |= directionBit;
}

template <class T> bool LineCrossing<T>::isTripped(uint32_t flags) const
{
    uint32_t const needed = mDirection != bothWays ? directionBit : 0;
    if (flags == (allPoints | needed))
        return true;
    return mCrossLine == 0 && (flags & ~directionBit) != 0 && (flags & needed) == needed;
}

template class LineCrossing<float>;
