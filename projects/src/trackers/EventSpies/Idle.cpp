#include "trackers/EventSpies/Idle.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

namespace {

constexpr int32_t noMovement = -1;
rktl::ElapsedTime const defaultWaitTime = rktl::ElapsedTime::fromMinutes(5);

int64_t millisecondsOf(rktl::TimeStamp const& time)
{
    return time.toElapsedTime().toMilliseconds();
}

} // namespace

Idle::Idle()
    : Idle("", "", defaultWaitTime, noMovement)
{
}

Idle::Idle(char const* name, char const* description, rktl::ElapsedTime const& waitTime, int movement)
    : FrameEventSpy(name, description)
    , mWaitTime(waitTime)
    , mMovement(movement)
{
}

Idle::Idle(Idle const& other)
    : FrameEventSpy(other)
{
    *this = other;
}

Idle& Idle::operator=(Idle const& other)
{
    FrameEventSpy::operator=(other);
    mWaitTime = other.mWaitTime;
    mMovement = other.mMovement;
    return *this;
}

unsigned int Idle::getTypeId() const
{
    return 1006;
}

rktl::String Idle::getTypeName() const
{
    return "IdleSpy";
}

Idle* Idle::clone() const
{
    return new Idle(*this);
}

rktl::String Idle::getFriendlyName() const
{
    return "Idle Object";
}

unsigned int Idle::getFilterMask() const
{
    return 10;
}

void Idle::reset()
{
    FrameEventSpy::reset();
    mInstances.clear();
}

void Idle::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (mWaitTime <= rktl::ElapsedTime())
        faults.push_back("wait-time: no object stays for 0 or less");
    if (mMovement < 0)
        faults.push_back(rktl::String::fromFormat("movement: %d pixels are less than standing still", mMovement));
}

rktl::String Idle::getRuleText() const
{
    return rktl::String::fromFormat(
        "alarms when an object stays within %d px for %s", mMovement, mWaitTime.toHumanString(false).c_str());
}

// ---- The rule ----

void Idle::internalSpy(ProcessFrame const& frame)
{
    if (mMovement == noMovement || mWaitTime < rktl::ElapsedTime())
        return;
    int64_t const now = millisecondsOf(frame.getTimeStamp());
    mInstances.prefetch();
    mInstances.begin();
    for (Sighting const& seen : view().sightings()) {
        IdleInst* const instance = follow(seen);
        if (!instance)
            continue;
        bool const isSeen =
            instance->mState < Object::tracked || (!instance->mPositions.empty() && instance->mNewest.time >= now);
        if (!isSeen)
            mInstances.drop();
        else if (instance->mState >= Object::tracked && isStaying(*instance))
            addEventObject(seen.id, frame, -1.0, nullptr, nullptr);
    }
    mInstances.end();
}

/// Takes in where the object is now. Null for one that was never watched and is not to be.
Idle::IdleInst* Idle::follow(Sighting const& seen)
{
    IdleInst* known = mInstances.keep(seen.id);
    if (seen.state < Object::purged || !seen.hasPath || !isWithinMaxSize(seen.box))
        return known;
    if (!known)
        known = &mInstances.add(seen.id, IdleInst(mWaitTime));
    known->mState = seen.state;
    if (seen.state != Object::purged)
        extend(*known, {seen.centre.x, seen.centre.y, millisecondsOf(seen.time)});
    return known;
}

void Idle::extend(IdleInst& instance, Place const& place) const
{
    Place const& last = instance.mNewest;
    bool const hasMoved =
        instance.mPositions.empty() || place.time < last.time || Point(place.x, place.y).distanceTo({last.x, last.y}) > mMovement;
    if (hasMoved) {
        instance.startAt(place);
        return;
    }
    if (instance.isFull(place.time) && instance.dropOld(place.time)) {
        Point const mean = instance.mean();
        if (isInZones(mean.x, mean.y))
            instance.mIdle = true;
    }
    instance.add(place);
}

/// Whether the object has been idle and still is where it was. One that has drifted loses as much of its past as it takes to
/// be near its mean again, and is idle no longer.
bool Idle::isStaying(IdleInst& instance) const
{
    while (!instance.mPositions.empty()) {
        if (Point(instance.mNewest.x, instance.mNewest.y).distanceTo(instance.mean()) <= mMovement)
            return instance.mIdle;
        instance.dropOldest();
        instance.mIdle = false;
    }
    return false;
}

void Idle::IdleInst::startAt(Place const& place)
{
    mPositions.clear();
    mSumX = mSumY = 0;
    add(place);
}

void Idle::IdleInst::add(Place const& place)
{
    mNewest = place;
    mPositions.emplace_back(place);
    mSumX += place.x;
    mSumY += place.y;
}

bool Idle::IdleInst::dropOld(int64_t time)
{
    while (isFull(time))
        dropOldest();
    return !mPositions.empty();
}

void Idle::IdleInst::dropOldest()
{
    mSumX -= mPositions.front().x;
    mSumY -= mPositions.front().y;
    mPositions.pop_front();
}

/// Cut towards 0.
Idle::Point Idle::IdleInst::mean() const
{
    int64_t const count = static_cast<int64_t>(mPositions.size());
    return {static_cast<int>(mSumX / count), static_cast<int>(mSumY / count)};
}

// ---- Forms ----

rktl::String Idle::toXML(char const* tag) const
{
    return wrapXML(tag, mWaitTime.toXML("wait-time") + rktl::String::fromFormat("<movement>%d</movement>", mMovement));
}

bool Idle::fromXML(char const* xml)
{
    return unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        if (name == "wait-time")
            mWaitTime.fromXML(element.toXML().c_str());
        else if (name == "movement")
            mMovement = element.getValue().toInteger();
        return true;
    });
}

bool Idle::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << mWaitTime << rktl::String::fromFormat("%d", mMovement);
    return true;
}

bool Idle::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::String movement;
    stream >> mWaitTime >> movement;
    mMovement = movement.toInteger();
    return true;
}
