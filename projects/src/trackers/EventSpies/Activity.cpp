#include "trackers/EventSpies/Activity.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <tuple>

namespace {

constexpr char const* typeTexts[] = {"Delta", "NewObject", "DeadObject", "Threshold"};
rktl::ElapsedTime const defaultMinAge = rktl::ElapsedTime::fromSeconds(1);

} // namespace

Activity::Activity()
    : FrameEventSpy("", "")
{
}

Activity::Activity(char const* name, char const* description, Type type, unsigned int maxActivity, unsigned int minDistance)
    : FrameEventSpy(name, description)
    , mType(type)
    , mMaxActivity(static_cast<int32_t>(maxActivity))
{
    setMinDistance(minDistance);
}

Activity::Activity(Activity const& other)
    : FrameEventSpy(other)
    , mType(other.mType)
    , mMaxActivity(other.mMaxActivity)
{
}

Activity& Activity::operator=(Activity const& other)
{
    FrameEventSpy::operator=(other);
    mType = other.mType;
    mMaxActivity = other.mMaxActivity;
    mLastCount = -1;
    mEventUid = 0;
    return *this;
}

rktl::String Activity::typeToString(Type const& type)
{
    return type >= delta && type <= threshold ? typeTexts[type] : "Unknown";
}

Activity::Type Activity::stringToType(char const* text)
{
    for (int32_t type = delta; type <= threshold; ++type)
        if (text && rktl::String(text) == typeTexts[type])
            return static_cast<Type>(type);
    return none;
}

unsigned int Activity::getTypeId() const
{
    return 1009;
}

rktl::String Activity::getTypeName() const
{
    return "ActivitySpy";
}

Activity* Activity::clone() const
{
    return new Activity(*this);
}

rktl::String Activity::getFriendlyName() const
{
    return "Activity";
}

unsigned int Activity::getFilterMask() const
{
    return 31;
}

rktl::String Activity::getRuleText() const
{
    switch (mType) {
    case delta:
        return "alarms when the number of objects changes";
    case threshold:
        return rktl::String::fromFormat("alarms at more than %d objects", mMaxActivity.value);
    case newObject:
        return rktl::String::fromFormat("alarms at an object that has come more than %u px", getMinDistance());
    case deadObject:
        return rktl::String::fromFormat("alarms when an object is gone that had come more than %u px", getMinDistance());
    default:
        return "alarms never: it has no type";
    }
}

void Activity::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (mType < delta || mType > threshold)
        faults.push_back("type: is missing; the spy does nothing without");
}

void Activity::reset()
{
    FrameEventSpy::reset();
    mLastCount = -1;
    mDeadFrames.clear();
}

// ---- The rule ----

void Activity::internalSpy(ProcessFrame const& frame)
{
    switch (mType) {
    case delta:
    case threshold:
        return countObjects(frame);
    case newObject:
    case deadObject:
        return watchObjects(frame);
    default:
        return;
    }
}

void Activity::countObjects(ProcessFrame const& frame)
{
    std::vector<uint32_t> ids;
    std::set<std::tuple<int, int, int, int>> boxes;
    for (Sighting const& seen : view().sightings()) {
        if (!isCounted(seen))
            continue;
        ids.push_back(seen.id);
        if (getAlarmBlobs())
            boxes.emplace(seen.box.x, seen.box.y, seen.box.width, seen.box.height);
    }
    auto const count = static_cast<int32_t>(getAlarmBlobs() ? boxes.size() : ids.size());
    if (mType == delta) {
        if (count != mLastCount)
            addCount(frame, ids, count, 0, false);
    } else if (count > mMaxActivity) {
        mEventUid = addCount(frame, ids, count, mEventUid, mEventUid == 0);
    } else if (mLastCount > mMaxActivity) {
        mEventUid = 0;
    }
    mLastCount = count;
}

uint32_t Activity::addCount(
    ProcessFrame const& frame, std::vector<uint32_t> const& ids, int32_t count, uint32_t uid, bool withFrame)
{
    Event event(moment(frame), moment(frame), getAlarmType(), getPriority(), 100);
    event.setUID(uid);
    event.setObjects(ids, originText());
    event.setAttribute("object-count", rktl::String::fromFormat("%d", count));
    return addEvent(std::move(event), withFrame ? &frame : nullptr, false);
}

void Activity::watchObjects(ProcessFrame const& frame)
{
    for (Sighting const& seen : view().sightings()) {
        if (!isWatched(seen))
            continue;
        if (mType == newObject)
            addEventObject(seen.id, frame, -1.0, nullptr, nullptr);
        else
            mDeadFrames[seen.id] = getFramePtr(frame);
    }
    if (mType == deadObject)
        reportDead();
}

void Activity::reportDead()
{
    for (auto entry = mDeadFrames.begin(); entry != mDeadFrames.end();) {
        auto const next = std::next(entry);
        if (!view().find(entry->first)) {
            addEventObject(entry->first, *entry->second, -1.0, nullptr, nullptr);
            mDeadFrames.erase(entry);
        }
        entry = next;
    }
}

bool Activity::isCounted(Sighting const& seen) const
{
    rksl::List<rktl::String> const& wanted = getClasses();
    return isPlaced(seen) && (wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](auto const& name) {
        return seen.object->getClasses().count(name) > 0;
    }));
}

bool Activity::isWatched(Sighting const& seen) const
{
    return isPlaced(seen) && std::round(seen.travel) > getMinDistance() && seen.age >= getMinAge() &&
        seen.object->getTrack().size() > 2;
}

/// Tracked, in a zone, and not too large.
bool Activity::isPlaced(Sighting const& seen) const
{
    return seen.state > Object::purged && seen.hasPath && isInZones(seen.centre.x, seen.centre.y) && isWithinMaxSize(seen.box);
}

// ---- Forms ----

rktl::String Activity::toXML(char const* tag) const
{
    return wrapXML(tag, "<type>" + typeToString(mType) + "</type>" + mMaxActivity.toXML("max-activity"));
}

bool Activity::fromXML(char const* xml)
{
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd() || !root.hasChildren())
        return false;
    setMinAge(defaultMinAge);
    return unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        if (name == "type") {
            mType = stringToType(element.getValue().c_str());
        } else if (name == "max-activity") {
            mMaxActivity.fromXML(element.toXML().c_str());
        } else if (name == "min-distance") {
            setMinDistance(element.getValue().toUnsignedInt());
        } else if (name == "min-age") {
            rktl::ElapsedTime age;
            age.fromXML(element.toXML().c_str());
            setMinAge(age);
        }
        return true;
    });
}

bool Activity::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::Integer(mType) << mMaxActivity;
    return true;
}

bool Activity::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::Integer type;
    stream >> type >> mMaxActivity;
    mType = static_cast<Type>(type.value);
    mLastCount = -1;
    return true;
}
