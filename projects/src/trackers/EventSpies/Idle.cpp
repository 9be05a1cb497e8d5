#include "trackers/EventSpies/Idle.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

namespace {

constexpr int32_t noMovement = -1;
rktl::ElapsedTime const defaultWaitTime = rktl::ElapsedTime::fromMinutes(5);

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
    for (auto const& [id, object] : frame.getObjects())
        follow(object);
    for (auto entry = mInstances.begin(); entry != mInstances.end();) {
        auto& [id, instance] = *entry;
        bool const isSeen = instance.mState < Object::tracked ||
            (!instance.mPositions.empty() && instance.mPositions.newestTime() >= frame.getTimeStamp());
        if (!frame.getObjects().findObject(id) || !isSeen) {
            entry = mInstances.erase(entry);
            continue;
        }
        if (instance.mState >= Object::tracked && isStaying(instance))
            addEventObject(id, frame, -1.0, nullptr, nullptr);
        ++entry;
    }
}

/// Takes in where the object is now.
void Idle::follow(Object const& object)
{
    rkml::BoundingBox<int> box;
    if (object.getState() < Object::purged || !object.newest(box) || !isWithinMaxSize(box))
        return;
    IdleInst& instance = mInstances.try_emplace(object.getId(), mWaitTime).first->second;
    instance.mState = object.getState();
    if (object.getState() == Object::purged)
        return;
    Point const place = box.centre();
    rktl::TimeStamp const time = object.getTrack().newestTime();
    bool const hasMoved = instance.mPositions.empty() || time < instance.mPositions.newestTime() ||
        place.distanceTo(instance.mPositions.newest()) > mMovement;
    if (hasMoved) {
        instance.startAt(place, time);
        return;
    }
    if (instance.mPositions.willPop(time) && instance.dropOld(time)) {
        Point const mean = instance.mean();
        if (isInZones(mean.x, mean.y))
            instance.mIdle = true;
    }
    instance.add(place, time);
}

/// Whether the object has been idle and still is where it was. One that has drifted loses as much of its past as it takes to
/// be near its mean again, and is idle no longer.
bool Idle::isStaying(IdleInst& instance) const
{
    while (!instance.mPositions.empty()) {
        if (instance.mPositions.newest().distanceTo(instance.mean()) <= mMovement)
            return instance.mIdle;
        instance.dropOldest();
        instance.mIdle = false;
    }
    return false;
}

void Idle::IdleInst::startAt(Point const& place, rktl::TimeStamp const& time)
{
    mPositions.clear();
    mSumX = mSumY = 0;
    add(place, time);
}

void Idle::IdleInst::add(Point const& place, rktl::TimeStamp const& time)
{
    mPositions.insert(place, time);
    mSumX += place.x;
    mSumY += place.y;
}

bool Idle::IdleInst::dropOld(rktl::TimeStamp const& time)
{
    for (auto const end = mPositions.top(time).second; mPositions.begin() != end;)
        dropOldest();
    return !mPositions.empty();
}

void Idle::IdleInst::dropOldest()
{
    mSumX -= mPositions.oldest().x;
    mSumY -= mPositions.oldest().y;
    mPositions.erase(mPositions.begin());
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
