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
bool hasEnded(Object const& object)
{
    return object.getState() == Object::removed || object.getState() == Object::purged;
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
    mInsideFrames.clear();
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
    Ids leavers, arrivers;
    follow(frame, leavers, arrivers);

    Type const out = mZoneType == exit ? enter : exit;
    Type const in = mZoneType == exit ? exit : enter;
    if (alarmsOn(out))
        for (uint32_t const id : leavers)
            addEventObject(id, frame, -1.0, typeToString(out).c_str(), nullptr);
    if (alarmsOn(in))
        for (uint32_t const id : arrivers) {
            auto const inside = mInsideFrames.find(id);
            Frame const* const seen = inside != mInsideFrames.end() ? inside->second.get() : &frame;
            addEventObject(id, *seen, -1.0, typeToString(in).c_str(), nullptr);
        }
    std::erase_if(mInsideFrames, [&](auto const& entry) { return !frame.getObjects().findObject(entry.first); });
}

/// Who has come out of a zone, and of those that were there last time, whose track has ended in one.
void EnterExit::follow(ProcessFrame const& frame, Ids& leavers, Ids& arrivers)
{
    std::map<uint32_t, bool> present;
    for (auto const& [number, object] : frame.getObjects()) {
        uint32_t const id = static_cast<uint32_t>(number.value);
        bool const passes = checkObject(object), isInside = hasComeIn(object);
        rememberInside(id, isInside, frame);
        if (passes && hasComeOut(object))
            leavers.push_back(id);
        present.emplace_hint(present.end(), id, passes && isInside);
    }
    for (auto const& [id, wouldArrive] : mLastObjects) {
        auto const now = present.find(id);
        if (now != present.end() ? now->second && hasEnded(*frame.getObjects().findObject(id)) : wouldArrive)
            arrivers.push_back(id);
    }
    mLastObjects.swap(present);
}

void EnterExit::rememberInside(uint32_t id, bool isInside, ProcessFrame const& frame)
{
    if (isInside)
        mInsideFrames[id] = mFrame.of(frame);
    else
        mInsideFrames.erase(id);
}

bool EnterExit::hasComeOut(Object const& object) const
{
    rkml::BoundingBox<int> box;
    return object.newest(box) && isInZone(object.getFirstBox()) && !isInZone(box);
}

bool EnterExit::hasComeIn(Object const& object) const
{
    rkml::BoundingBox<int> box;
    return object.newest(box) && !isInZone(object.getFirstBox()) && isInZone(box);
}

/// Unlike with other spies, no zones are no place at all.
bool EnterExit::isInZone(rkml::BoundingBox<int> const& box) const
{
    rkml::Point2D<int> const centre = box.centre();
    return !getPixelZones().empty() && isInZones(centre.x, centre.y);
}

bool EnterExit::checkObject(Object const& object) const
{
    rkml::BoundingBox<int> box;
    return object.newest(box) && object.getType() != "Static" && isWithinMaxSize(box) &&
        rkml::coordinateCast<uint32_t>(object.travel()) >= getMinDistance() && object.age() >= getMinAge();
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
