#include "trackers/EventSpies/Direction.h"

#include "BaseClasses/ProcessFrame.h"
#include "math/rkml_Line2d.h"
#include "math/rkml_Utility.h"
#include "misc/rk_portability.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double notConfigured = -1.0;
rkml::Point2D<int> const noPoint(-1, -1);

unsigned int toDegrees(double radians)
{
    double const degrees = radians * rkml::RAD_TO_DEG;
    if (!(degrees >= 0.0)) // a binary form may say nan
        return 0;
    return degrees >= 4294967295.0 ? 4294967295u : static_cast<unsigned int>(degrees + 0.5);
}

/// From 0 to below 2 pi, counter-clockwise on the screen, whose y axis points down.
double heading(rkml::Point2D<int> const& from, rkml::Point2D<int> const& to)
{
    double const angle = -std::atan2(double(to.y) - from.y, double(to.x) - from.x);
    return angle < 0.0 ? angle + rkml::TWO_PI : angle;
}

} // namespace

Direction::Direction()
    : FrameEventSpy("", "")
    , mTimeWindow(rktl::ElapsedTime::fromSeconds(-1))
{
}

Direction::Direction(char const* name, char const* description, unsigned int angle, unsigned int minDistance,
    rktl::ElapsedTime const& timeWindow, unsigned int tolerance)
    : FrameEventSpy(name, description)
    , mTimeWindow(timeWindow)
{
    setAngle(angle);
    setTolerance(tolerance);
    setMinDistance(minDistance);
}

Direction::Direction(Direction const& other)
    : FrameEventSpy(other)
    , mAngle(other.mAngle)
    , mTolerance(other.mTolerance)
    , mTimeWindow(other.mTimeWindow)
{
}

unsigned int Direction::getAngle() const
{
    return toDegrees(mAngle);
}

unsigned int Direction::getTolerance() const
{
    return toDegrees(mTolerance);
}

void Direction::setAngle(unsigned int degrees)
{
    mAngle = (degrees % 360) * rkml::DEG_TO_RAD;
}

void Direction::setTolerance(unsigned int degrees)
{
    mTolerance = degrees * rkml::DEG_TO_RAD;
}

unsigned int Direction::getTypeId() const
{
    return 1004;
}

rktl::String Direction::getTypeName() const
{
    return "DirectionSpy";
}

Direction* Direction::clone() const
{
    return new Direction(*this);
}

void Direction::reset()
{
    FrameEventSpy::reset();
    mInstances.clear();
}

rktl::String Direction::getFriendlyName() const
{
    return "Contraflow";
}

unsigned int Direction::getFilterMask() const
{
    return 15;
}

rktl::String Direction::getRuleText() const
{
    return rktl::String::fromFormat("alarms at %u +/- %u deg over %s, from %u px on", getAngle(), getTolerance(),
        mTimeWindow.toHumanString(false).c_str(), getMinDistance());
}

// ---- The rule ----

void Direction::internalSpy(ProcessFrame const& frame)
{
    if (mAngle == notConfigured || mTolerance == notConfigured || mTimeWindow < rktl::ElapsedTime())
        return;
    // Only objects that get this far keep their state: the others start afresh when they come back.
    prepareMayMatch();
    mInstances.prefetch();
    mInstances.begin();
    for (Sighting const& seen : view().sightings()) {
        if (!seen.hasPath || seen.isStatic || seen.state <= Object::nascent)
            continue;
        DirectionInst* const known = mInstances.keep(seen.id);
        DirectionInst& instance = known ? *known : mInstances.add(seen.id, DirectionInst(mTimeWindow));
        if (seen.state != Object::purged)
            judge(instance, seen, frame);
    }
    mInstances.end();
}

void Direction::judge(DirectionInst& instance, Sighting const& seen, ProcessFrame const& frame)
{
    Point const& centre = seen.centre;
    bool const isFull = instance.mTrack.willPop(seen.time);
    instance.mTrack.insert(centre, seen.time);
    if (!isFull || !isInZones(centre.x, centre.y) || !isWithinMaxSize(seen.box))
        return;
    if (!matches(instance, centre)) {
        if (instance.mStartPoint != noPoint && instance.mHold.hasExpired())
            instance.mStartPoint = noPoint;
        return;
    }
    instance.mHold.start(mTimeWindow);
    if (instance.mStartPoint == noPoint)
        instance.mStartPoint = instance.mTrack.oldest();
    if (instance.mStartPoint.distanceTo(centre) >= getMinDistance() && seen.age >= getMinAge())
        addEventObject(seen.object->getId(), frame, -1.0, nullptr, nullptr);
}

bool Direction::matches(DirectionInst const& instance, Point const& centre)
{
    if (!mayMatch(instance.mTrack.oldest(), centre))
        return false;
    mPoints.clear();
    for (auto const& [time, point] : instance.mTrack)
        mPoints.push_back(point);
    // Points of one place, a single one included, have no heading.
    if (std::all_of(mPoints.begin(), mPoints.end(), [&](auto const& point) { return point == mPoints.front(); }))
        return false;
    rkml::Line2D<int> const line = rkml::Line2D<int>::bestFit(mPoints);
    // The line ends at the end point nearer to where the object is now.
    bool const endsAtSecond = centre.distanceTo(line.first()) > centre.distanceTo(line.second());
    double const fitted = endsAtSecond ? heading(line.first(), line.second()) : heading(line.second(), line.first());
    double const displacement = heading(instance.mTrack.oldest(), centre);
    return isWithin(fitted, displacement, mAngle) || isWithin(fitted, displacement, mAngle + rkml::TWO_PI);
}

void Direction::prepareMayMatch()
{
    constexpr double margin = 1e-6; // rad; far above what rounding in the exact test can move
    mRight = std::cos(mAngle);
    mUp = std::sin(mAngle);
    mLeastCosine = mTolerance + margin < rkml::PI ? std::cos(mTolerance + margin) : -2.0;
}

/// False only where the displacement alone is off by more than the tolerance, as with most objects: that takes neither a line
/// nor an angle. What is near the limit is left to the exact test.
bool Direction::mayMatch(Point const& from, Point const& to) const
{
    double const right = double(to.x) - from.x, up = double(from.y) - to.y;
    return !(right * mRight + up * mUp < rkml::hypotenuse(right, up) * mLeastCosine);
}

bool Direction::isWithin(double fitted, double displacement, double angle) const
{
    return std::fabs(fitted - angle) < mTolerance && std::fabs(displacement - angle) < mTolerance;
}

// ---- Forms ----

rktl::String Direction::toXML(char const* tag) const
{
    return wrapXML(tag,
        rktl::String::fromFormat("<angle>%u</angle><tolerance>%u</tolerance>", getAngle(), getTolerance()) +
            mTimeWindow.toXML("time-window"));
}

bool Direction::fromXML(char const* xml)
{
    return unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const value = element.getValue();
        if (name == "angle")
            setAngle(static_cast<uint32_t>(rk_atoi64(value.c_str())));
        else if (name == "tolerance")
            setTolerance(static_cast<uint32_t>(rk_atoi64(value.c_str())));
        else if (name == "min-distance")
            setMinDistance(value.toUnsignedInt());
        else if (name == "time-window")
            mTimeWindow.fromXML(element.toXML().c_str());
        return true;
    });
}

bool Direction::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::String::fromFormat("%f", mAngle) << rktl::String::fromFormat("%f", mTolerance) << mTimeWindow;
    return true;
}

bool Direction::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::String angle, tolerance;
    stream >> angle >> tolerance >> mTimeWindow;
    mAngle = strtod(angle.c_str(), nullptr);
    mTolerance = strtod(tolerance.c_str(), nullptr);
    return true;
}
