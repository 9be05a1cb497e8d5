#include "trackers/EventSpies/EnterExit.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

namespace {

constexpr struct {
    EnterExit::Type type;
    char const* text;
} typeTexts[] = {{EnterExit::both, "Both"}, {EnterExit::enter, "Enter"}, {EnterExit::exit, "Exit"}};

/// Though the object is still there.
bool hasEnded(Sighting const& seen)
{
    return seen.state == Object::removed || seen.state == Object::purged;
}

} // namespace

EnterExit::EnterExit()
    : FrameEventSpy("", "")
{
}

EnterExit::EnterExit(char const* name, char const* description, Type type, Type zoneType)
    : FrameEventSpy(name, description)
    , mType(type)
    , mZoneType(zoneType)
{
}

EnterExit::EnterExit(EnterExit const& other)
    : FrameEventSpy(other)
{
    *this = other;
}

EnterExit& EnterExit::operator=(EnterExit const& other)
{
    FrameEventSpy::operator=(other);
    mType = other.mType;
    mZoneType = other.mZoneType;
    return *this;
}

bool EnterExit::setZoneType(Type zoneType)
{
    if (zoneType != enter && zoneType != exit)
        return false;
    mZoneType = zoneType;
    return true;
}

rktl::String EnterExit::typeToString(Type const& type)
{
    for (auto const& known : typeTexts)
        if (known.type == type)
            return known.text;
    return "Unknown";
}

EnterExit::Type EnterExit::stringToType(char const* text)
{
    for (auto const& known : typeTexts)
        if (rktl::String(known.text) == text)
            return known.type;
    return unknown;
}

unsigned int EnterExit::getTypeId() const
{
    return 1017;
}

rktl::String EnterExit::getTypeName() const
{
    return "EnterExitSpy";
}

EnterExit* EnterExit::clone() const
{
    return new EnterExit(*this);
}

rktl::String EnterExit::getFriendlyName() const
{
    return "Enter Exit";
}

unsigned int EnterExit::getFilterMask() const
{
    return 15;
}

void EnterExit::reset()
{
    FrameEventSpy::reset();
    mLastObjects.clear();
}

void EnterExit::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (getZones().empty())
        faults.push_back("zones: there is none to pass through");
    if (mType == unknown)
        faults.push_back("type: none of Both, Enter, Exit");
    if (mZoneType != enter && mZoneType != exit)
        faults.push_back("zone-type: neither Enter nor Exit");
}

rktl::String EnterExit::getRuleText() const
{
    char const* const passages = mType == both ? "enters or leaves" : mType == enter ? "enters" : "leaves";
    return rktl::String::fromFormat("alarms when an object %s %s, from %u px on", passages,
        mZoneType == exit ? "the view through the zone" : "the zone", getMinDistance());
}

// ---- The rule ----

void EnterExit::internalSpy(ProcessFrame const& frame)
{
    Ids leavers;
    Arrivers arrivers;
    follow(frame, leavers, arrivers);

    Type const out = mZoneType == exit ? enter : exit;
    Type const in = mZoneType == exit ? exit : enter;
    if (alarmsOn(out))
        for (uint32_t const id : leavers)
            addEventObject(id, frame, -1.0, typeToString(out).c_str(), nullptr);
    if (alarmsOn(in))
        for (auto const& [id, inside] : arrivers)
            addEventObject(id, *inside, -1.0, typeToString(in).c_str(), nullptr);
}

/// Who has come out of a zone, and of those that were there last time, whose track has ended in one.
void EnterExit::follow(ProcessFrame const& frame, Ids& leavers, Arrivers& arrivers)
{
    auto const arriveIfGone = [&](uint32_t id, Passage const& last) {
        if (last.wouldArrive)
            arrivers.emplace_back(id, last.mInside);
        return false;
    };
    mLastObjects.begin();
    for (Sighting const& seen : view().sightings()) {
        bool const beganInside = seen.hasPath && isInZone(seen.firstCentre);
        bool const isInside = seen.hasPath && isInZone(seen.centre);
        bool const passes = check(seen);
        Passage* const last = mLastObjects.keep(seen.id, arriveIfGone);
        Passage& passage = last ? *last : mLastObjects.add(seen.id, {});
        passage.wouldArrive = passes && isInside && !beganInside;
        passage.mInside = isInside && !beganInside ? keep(frame) : rktl::SmartPtr<Frame>();
        if (passes && beganInside && !isInside)
            leavers.push_back(seen.id);
        if (last && passage.wouldArrive && hasEnded(seen))
            arrivers.emplace_back(seen.id, passage.mInside);
    }
    mLastObjects.end(arriveIfGone);
}

/// Unlike with other spies, no zones are no place at all.
bool EnterExit::isInZone(rkml::Point2D<int> const& place) const
{
    return !getPixelZones().empty() && isInZones(place.x, place.y);
}

bool EnterExit::checkObject(Object const& object) const
{
    return check(Sighting(object.getId(), object));
}

bool EnterExit::check(Sighting const& seen) const
{
    return seen.hasPath && !seen.isStatic && isWithinMaxSize(seen.box) &&
        rkml::coordinateCast<uint32_t>(seen.travel) >= getMinDistance() && seen.age >= getMinAge();
}

// ---- Forms ----

rktl::String EnterExit::toXML(char const* tag) const
{
    return wrapXML(tag, "<type>" + typeToString(mType) + "</type><zone-type>" + typeToString(mZoneType) + "</zone-type>");
}

bool EnterExit::fromXML(char const* xml)
{
    bool const isRead = unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        Type const type = stringToType(element.getValue().c_str());
        if (name == "zone-type")
            return setZoneType(type);
        if (name == "type")
            mType = type;
        return true;
    });
    if (isRead)
        reset();
    return isRead;
}

bool EnterExit::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::Integer(mType) << rktl::Integer(mZoneType);
    return true;
}

bool EnterExit::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::Integer type, zoneType;
    stream >> type >> zoneType;
    mType = static_cast<Type>(type.value);
    mZoneType = static_cast<Type>(zoneType.value);
    return true;
}
