#pragma once

#include "math/rkml_Point2d.h"
#include "misc/rktl_Countdown.h"
#include "misc/rktl_Fifo.h"
#include "misc/rktl_TimeQueue.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectBook.h"

#include <vector>

/// Raises an event when an object has travelled along a configured heading. Headings are those of the picture: 0 is to the
/// right, 90 up, 180 left, 270 down.
///
/// The spy looks at the object's centres over a window of time. Two headings have to lie within the tolerance: that of the
/// least-squares line through these points, and that from the oldest to the newest. A run of such matches begins one window
/// back and survives gaps shorter than the window; the event comes when it is long enough in pixels and the object old
/// enough.
class Direction : public FrameEventSpy {
public:
    /// Not configured: does nothing until it has an angle, a tolerance and a window that is not negative.
    Direction();

    /// angle: degrees, taken modulo 360. minDistance: pixels. tolerance: degrees to either side; 0 never matches, 360 and
    /// more always does.
    Direction(char const* name, char const* description, unsigned int angle, unsigned int minDistance,
        rktl::ElapsedTime const& timeWindow, unsigned int tolerance);
    /// Angle, tolerance and window, but no tracks.
    Direction(Direction const& other);

    /// Whole degrees, rounded; 0 when not configured.
    unsigned int getAngle() const;
    unsigned int getTolerance() const;
    void setAngle(unsigned int degrees);
    void setTolerance(unsigned int degrees);
    rktl::ElapsedTime const& getTimeWindow() const { return mTimeWindow; }
    void setTimeWindow(rktl::ElapsedTime const& window) { mTimeWindow = window; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    Direction* clone() const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;

private:
    using Point = rkml::Point2D<int>;

    /// What the spy knows of one object.
    struct DirectionInst {
        explicit DirectionInst(rktl::ElapsedTime const& window)
            : mTrack(window)
        {
        }

        void prefetch() const { mTrack.prefetch(); }

        rktl::TimeQueue<Point, rktl::Fifo<std::pair<rktl::TimeStamp, Point>>> mTrack; // centres
        Point mStartPoint{-1, -1}; // where the run began; (-1, -1): there is none
        rktl::Countdown mHold;     // how long the run survives without a match
    };

    void judge(DirectionInst& instance, Sighting const& seen, ProcessFrame const& frame);
    void prepareMayMatch();
    bool mayMatch(Point const& from, Point const& to) const;
    bool matches(DirectionInst const& instance, Point const& centre);
    bool isWithin(double fitted, double displacement, double angle) const;

    ObjectBook<DirectionInst> mInstances;
    double mAngle = -1.0;     // radians, 0 to below 2 pi; -1: not configured
    double mTolerance = -1.0; // radians; -1: not configured
    rktl::ElapsedTime mTimeWindow;
    double mRight = 1.0; // the heading as a vector of length 1
    double mUp = 0.0;
    double mLeastCosine = -1.0; // of the angle between a displacement that may match and the heading
    std::vector<Point> mPoints; // of the object under judgement; kept for its storage
};
