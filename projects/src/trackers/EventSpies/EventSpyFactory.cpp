#include "trackers/EventSpies/EventSpyFactory.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/Activity.h"
#include "trackers/EventSpies/CrowdDensity.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/EventSpies/EnterExit.h"
#include "trackers/EventSpies/ExternalEventSpy.h"
#include "trackers/EventSpies/Idle.h"
#include "trackers/EventSpies/LineCrossingSpy.h"
#include "trackers/EventSpies/ObjectSpy.h"
#include "trackers/EventSpies/ObjectTakenSpy.h"
#include "trackers/EventSpies/OpticalFlowSpy.h"
#include "trackers/EventSpies/Perimeter.h"
#include "trackers/EventSpies/ProfileSpy.h"
#include "trackers/EventSpies/Speed.h"

#include <cassert>

namespace {

constexpr char const* capacityActivity = "CapacityActivitySpy";

/// One type of spy.
struct SpyType {
    unsigned short id;
    char const* name;
    char const* secondName;     // or null
    EventSpy* (*make)();        // by its default constructor
    EventSpy* (*makeDefault)(); // null: the type has no configuration that works by itself
};

EventSpy* defaultDirection()
{
    return new Direction("", "", 45, 100, rktl::ElapsedTime::fromSeconds(2), 15);
}

/// The middle of the frame, of half its width and height.
rkml::Polygon2D<float> defaultZone()
{
    return rkml::Polygon2D<float>(rkml::BoundingBox<float>(0.25f, 0.25f, 0.5f, 0.5f));
}

EventSpy* defaultPerimeter()
{
    auto* const spy = new Perimeter;
    spy->setRegions({defaultZone()});
    return spy;
}

EventSpy* defaultIdle()
{
    return new Idle("", "", rktl::ElapsedTime::fromMinutes(1), 25);
}

EventSpy* defaultLineCrossing()
{
    return new LineCrossingSpy("", "", {{0.5f, 0.25f}, {0.5f, 0.75f}}, 100);
}

EventSpy* defaultObjectTaken()
{
    auto* const spy = new ObjectTakenSpy;
    spy->setRegion(defaultZone());
    return spy;
}

EventSpy* defaultEnterExit()
{
    auto* const spy = new EnterExit("", "", EnterExit::both, EnterExit::exit);
    spy->setZones({defaultZone()});
    return spy;
}

EventSpy* defaultActivity()
{
    return new Activity("", "", Activity::newObject, 0, 50);
}

EventSpy* defaultCrowdDensity()
{
    auto* const spy = new CrowdDensity;
    spy->setRegions({defaultZone()});
    return spy;
}

EventSpy* defaultSpeed()
{
    return new Speed("", "", {{0.25f, 0.25f}, {0.25f, 0.75f}}, {{0.75f, 0.25f}, {0.75f, 0.75f}}, 55, 0, 100);
}

EventSpy* defaultProfile()
{
    return new ProfileSpy("", 0.5f, rktl::ElapsedTime::fromSeconds(1));
}

/// Alarms at the second box, whichever objects share them.
EventSpy* makeCapacityActivity()
{
    auto* const spy = new Activity("", "", Activity::threshold, 1, 50);
    spy->setAlarmBlobs(true);
    return spy;
}

template <class Spy> EventSpy* make()
{
    return new Spy;
}

/// In the order in which names are compared.
constexpr SpyType spyTypes[] = {
    {1004, "DirectionSpy", nullptr, make<Direction>, defaultDirection},
    {1005, "PerimeterSpy", nullptr, make<Perimeter>, defaultPerimeter},
    {1006, "IdleSpy", nullptr, make<Idle>, defaultIdle},
    {1008, "LineCrossingSpy", "TripwireSpy", make<LineCrossingSpy>, defaultLineCrossing},
    {1009, "ActivitySpy", nullptr, make<Activity>, defaultActivity},
    {1011, "ObjectSpy", nullptr, make<ObjectSpy>, nullptr},
    {1012, "ObjectTakenSpy", nullptr, make<ObjectTakenSpy>, defaultObjectTaken},
    {1014, "OpticalFlowSpy", nullptr, make<OpticalFlowSpy>, nullptr},
    {1017, "EnterExitSpy", nullptr, make<EnterExit>, defaultEnterExit},
    {1018, "CrowdDensitySpy", nullptr, make<CrowdDensity>, defaultCrowdDensity},
    {1019, "SpeedSpy", nullptr, make<Speed>, defaultSpeed},
    {1022, "ExternalEventSpy", nullptr, make<ExternalEventSpy>, nullptr},
    {1026, "ProfileSpy", nullptr, make<ProfileSpy>, defaultProfile},
};

SpyType const* findType(unsigned short id)
{
    for (SpyType const& type : spyTypes)
        if (type.id == id)
            return &type;
    return nullptr;
}

SpyType const* findType(rktl::String const& name)
{
    for (SpyType const& type : spyTypes)
        if (name.iCompare(type.name) == 0 || (type.secondName && name.iCompare(type.secondName) == 0))
            return &type;
    return nullptr;
}

bool serialize(EventSpy const* spy, rksl::MemIOStream& stream)
{
    if (!spy)
        return false;
    stream << rktl::Integer(static_cast<int32_t>(spy->getTypeId())) << *spy;
    return true;
}

} // namespace

EventSpyFactory::EventSpyFactory() = default;
EventSpyFactory::~EventSpyFactory() = default;

EventSpyFactory::EventSpyFactory(EventSpy const* spy)
{
    assert(spy != nullptr);
    mSpy.reset(spy->clone());
}

EventSpyFactory::EventSpyFactory(unsigned short typeId)
    : mSpy(defaultEventSpy(typeId))
{
}

EventSpyFactory::EventSpyFactory(char const* typeName)
    : mSpy(rktl::String(typeName) == capacityActivity ? makeCapacityActivity() : defaultEventSpy(getSpyType(typeName)))
{
}

EventSpyFactory::EventSpyFactory(EventSpyFactory const& other)
    : rksl::Serializable(other)
    , mSpy(other.mSpy ? other.mSpy->clone() : nullptr)
{
}

EventSpyFactory& EventSpyFactory::operator=(EventSpyFactory const& other)
{
    if (this != &other)
        mSpy.reset(other.mSpy ? other.mSpy->clone() : nullptr);
    return *this;
}

unsigned short EventSpyFactory::getSpyType(rktl::String const& typeName)
{
    SpyType const* const type = findType(typeName);
    return type ? type->id : 0;
}

EventSpy* EventSpyFactory::newEventSpy(unsigned short typeId)
{
    SpyType const* const type = findType(typeId);
    return type ? type->make() : nullptr;
}

EventSpy* EventSpyFactory::defaultEventSpy(unsigned short typeId)
{
    SpyType const* const type = findType(typeId);
    return type && type->makeDefault ? type->makeDefault() : nullptr;
}

rksl::StringMap<rktl::String> EventSpyFactory::getAllEventSpies()
{
    rksl::StringMap<rktl::String> spies;
    for (SpyType const& type : spyTypes) {
        std::unique_ptr<EventSpy> const spy(type.make());
        if (dynamic_cast<FrameEventSpy const*>(spy.get()))
            spies[type.name] = spy->toXML(type.name);
    }
    return spies;
}

unsigned int EventSpyFactory::getTypeId() const
{
    return 1003;
}

rktl::String EventSpyFactory::getTypeName() const
{
    return "EventSpyFactory";
}

rktl::String EventSpyFactory::toXML() const
{
    return mSpy ? mSpy->toXML() : rktl::String();
}

rktl::String EventSpyFactory::toXML(char const*) const
{
    return toXML();
}

bool EventSpyFactory::fromXML(char const* xml)
{
    rkxml::DomIterator const cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd())
        return false;
    mSpy.reset();
    SpyType const* const type = findType(cursor.getName());
    if (!type)
        return false;
    std::unique_ptr<EventSpy> spy(type->make());
    if (!spy->fromXML(cursor.toXML().c_str()))
        return false;
    mSpy = std::move(spy);
    return true;
}

unsigned int EventSpyFactory::getBinLength() const
{
    rksl::MemIOStream stream;
    return serialize(mSpy.get(), stream) ? stream.getBinLength() : 0;
}

unsigned int EventSpyFactory::toBin(unsigned char* out) const
{
    rksl::MemIOStream stream;
    if (!serialize(mSpy.get(), stream))
        throw rktl::Exception("rksl::Serializable::fromBin() - Failed!");
    return stream.toBin(out);
}

unsigned int EventSpyFactory::fromBin(unsigned char const* in, unsigned int length)
{
    mSpy.reset();
    rksl::MemIOStream stream;
    unsigned int const used = stream.fromBin(in, length);
    rktl::Integer typeId;
    stream >> typeId;
    SpyType const* const type = typeId >= 0 && typeId <= UINT16_MAX ? findType(static_cast<unsigned short>(typeId)) : nullptr;
    if (!type)
        throw rktl::Exception("rksl::Serializable::fromBin() - Failed!");
    std::unique_ptr<EventSpy> spy(type->make());
    stream >> *spy;
    mSpy = std::move(spy);
    return used;
}
