#pragma once

#include "math/rkml_BoundingBox.h"
#include "math/rkml_Line2d.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/ObjectBook.h"
#include "trackers/EventSpies/Sighting.h"

#include <cstdint>
#include <limits>
#include <optional>

/// Which objects have crossed a line: the geometry and the book of each object's corners and centre. T is float.
///
/// The five points of a box have a bit each, which is toggled by each crossing: a set bit says that the point stands on the
/// other side of the line from where it began. Not thread-safe.
template <class T> class LineCrossing {
public:
    /// Which crossings count: the side named is the one to end on.
    enum Way : int32_t {
        bothWays = 0,
        rightOrBelow = 1, ///< right of a line steeper than 45 degrees, below a flatter one
        leftOrAbove = 2,
    };

    /// A line without length: nothing crosses it.
    LineCrossing() = default;
    virtual ~LineCrossing() = default;
    LineCrossing(LineCrossing const&) = default;
    LineCrossing& operator=(LineCrossing const&) = default;

    /// As configured: normalised (all coordinates from 0 to 1) or in pixels.
    rkml::LineSegment2D<T> const& getSegment() const { return mSegment; }
    /// In pixels of the frame size seen last.
    rkml::LineSegment2D<T> const& getPixelLine() const { return mLine; }
    /// Whether the whole object must pass: its corners the unbounded line, its centre the segment. Otherwise one of the five
    /// points through the segment is enough.
    bool getCrossLine() const { return mCrossLine != 0; }
    void setCrossLine(bool whole) { mCrossLine = whole ? 1 : 0; }
    int32_t getDirection() const { return mDirection; }
    /// False, and as before, for what is no Way.
    bool setDirection(int32_t direction);

protected:
    /// Between which distances from the unbounded line a box lies: pixels, above 0 on side -1 and below 0 on side +1.
    struct Reach {
        double least = std::numeric_limits<double>::lowest();
        double most = std::numeric_limits<double>::max();
    };

    /// What is known of one object.
    struct TrippedObj {
        rkml::BoundingBox<int> mBox{0, 0, 1, 1}; // of the last evaluation
        Reach mReach;                            // of mBox; anywhere before the first evaluation
        uint32_t mTriggers = 0;
        int32_t mMaxDistance = 0; // pixels, the largest travel seen
    };

    /// Forgets all objects. A segment without length changes nothing else.
    void setSegment(rkml::LineSegment2D<T> const& segment);
    /// A size that is new moves the line.
    void setFrameSize(unsigned int width, unsigned int height);
    /// As for a fresh stream; the line stays.
    void forgetObjects();

    /// Judges the object at its newest box: whether it stands tripped.
    bool checkObject(Sighting const& seen, TrippedObj& tripped);

    rktl::Integer mCrossLine{1};
    rktl::ElapsedTime mStartPosition{-1}; // time stamp of the first frame seen; negative: none yet
    ObjectBook<TrippedObj> mTrippedObjects;

private:
    using Point = rkml::Point2D<T>;
    using Line = rkml::Line2D<T>;

    void makePixelLine();
    Reach reachOf(rkml::BoundingBox<int> const& box) const;
    static bool areClear(Reach const& before, Reach const& now);
    bool checkNear(rkml::BoundingBox<int> const& box, Reach const& reach, TrippedObj& tripped);
    void calculateDirectionSign();
    int sideOf(Point const& point) const { return mLine.signedDistanceTo(point) >= 0.0 ? 1 : -1; }
    void updateDirectionTrigger(Point const& point, uint32_t bits, uint32_t& flags) const;
    void checkIntersection(Point const& from, Point const& to, uint32_t bits, uint32_t& flags) const;
    bool isTripped(uint32_t flags) const;

    rkml::LineSegment2D<T> mLine;
    rkml::LineSegment2D<T> mSegment;
    Line mInfiniteLine;       // through mLine
    double mLineLength = 0.0; // of mLine
    double mNormalX = 0.0; // a point is mNormalX * x + mNormalY * y + mOffset pixels from the unbounded line, on the one side or,
    double mNormalY = 0.0; // below 0, the other; all three are 0 where that is not known
    double mOffset = 0.0;
    int32_t mLineWidth = 100; // frame size that mLine was made for
    int32_t mLineHeight = 100;
    int32_t mDirection = bothWays;
    int32_t mDirectionSign = 0; // +1 or -1, the side to end on; 0: not worked out yet
};

extern template class LineCrossing<float>;
