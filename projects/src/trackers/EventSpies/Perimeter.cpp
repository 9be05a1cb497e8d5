#include "trackers/EventSpies/Perimeter.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <cstdlib>
#include <sstream>

Perimeter::Perimeter()
    : FrameEventSpy("", "")
    , mRegionMask(false)
{
}

Perimeter::Perimeter(Perimeter const& other)
    : FrameEventSpy(other)
    , mRegionMask(false)
{
    *this = other;
}

Perimeter& Perimeter::operator=(Perimeter const& other)
{
    FrameEventSpy::operator=(other);
    mRegions = other.mRegions;
    mIntrusion = other.mIntrusion;
    return *this;
}

void Perimeter::setRegions(rksl::List<rkml::Polygon2D<float>> const& regions)
{
    mRegions = regions;
    forgetFrameSize();
}

unsigned int Perimeter::getTypeId() const
{
    return 1005;
}

rktl::String Perimeter::getTypeName() const
{
    return "PerimeterSpy";
}

Perimeter* Perimeter::clone() const
{
    return new Perimeter(*this);
}

rktl::String Perimeter::getFriendlyName() const
{
    return "Perimeter Intrusion";
}

unsigned int Perimeter::getFilterMask() const
{
    return 15;
}

void Perimeter::reset()
{
    FrameEventSpy::reset();
    mLastObjects.clear();
}

void Perimeter::onFrameResize(unsigned int width, unsigned int height)
{
    FrameEventSpy::onFrameResize(width, height);
    mRegionMask = rkml::Mask2D<bool>(false);
    if (width == 0 || height == 0)
        return;
    int const columns = static_cast<int>(width), rows = static_cast<int>(height);
    for (rkml::Polygon2D<float> const& region : mRegions)
        mRegionMask.addPolygon(region.denormalize(columns, rows), true, {0, 0, columns, rows});
}

void Perimeter::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (mRegions.empty())
        faults.push_back("perimeter-regions: there is none to come into");
    findPolygonFaults(mRegions, "perimeter-regions", "region", faults);
    if (!(mIntrusion >= 0.0 && mIntrusion <= 1.0))
        faults.push_back(rktl::String::fromFormat("intrusion: %g is no share from 0 to 1", mIntrusion));
}

void Perimeter::getShapes(std::vector<SpyShape>& shapes) const
{
    addShapes(mRegions, "region", shapes);
}

rktl::String Perimeter::getRuleText() const
{
    return rktl::String::fromFormat(
        "alarms when %.3g %% of an object lie in the region, from %u px on", mIntrusion * 100.0, getMinDistance());
}

// ---- The rule ----

void Perimeter::internalSpy(ProcessFrame const& frame)
{
    auto const alarm = [&](uint32_t id) { addEventObject(id, frame, -1.0, nullptr, nullptr); };
    auto const alarmIfGone = [&](uint32_t id, bool intruded) {
        if (intruded)
            alarm(id);
        return false;
    };
    mLastObjects.begin();
    for (Sighting const& seen : view().sightings()) {
        bool const intrudes = seen.state != Object::purged && check(seen);
        bool* const last = mLastObjects.keep(seen.id, alarmIfGone);
        if (!last)
            mLastObjects.add(seen.id, intrudes);
        else if ((*last = intrudes) && seen.state > Object::purged)
            alarm(seen.id);
    }
    mLastObjects.end(alarmIfGone);
}

bool Perimeter::checkObject(Object const& object) const
{
    return check(Sighting(object.getId(), object));
}

/// What costs most comes last.
bool Perimeter::check(Sighting const& seen) const
{
    return seen.hasPath && !seen.isStatic && isWithinMaxSize(seen.box) &&
        rkml::coordinateCast<uint32_t>(seen.travel) >= getMinDistance() && seen.age >= getMinAge() &&
        mRegionMask.getOverlap(seen.box, true) >= mIntrusion && mRegionMask.getOverlap(seen.object->getFirstBox(), true) == 0.0;
}

// ---- Forms ----

rktl::String Perimeter::toXML(char const* tag) const
{
    std::ostringstream keys;
    keys << "<perimeter-regions>";
    for (rkml::Polygon2D<float> const& region : mRegions)
        keys << std::string(region.toXML("region", "vertex"));
    keys << "</perimeter-regions><intrusion>" << mIntrusion << "</intrusion>";
    return wrapXML(tag, keys.str());
}

bool Perimeter::fromXML(char const* xml)
{
    bool const isRead = unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        if (name == "perimeter-regions" || name == "rkml_PolygonList")
            mRegions.fromXML(element.toXML().c_str());
        else if (name == "intrusion")
            mIntrusion = strtod(element.getValue().c_str(), nullptr);
        else if (name == "min-distance")
            setMinDistance(element.getValue().toUnsignedInt());
        return true;
    });
    if (isRead)
        reset();
    return isRead;
}

bool Perimeter::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << mRegions << rktl::String::fromFormat("%f", mIntrusion);
    return true;
}

bool Perimeter::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::String intrusion;
    stream >> mRegions >> intrusion;
    mIntrusion = strtod(intrusion.c_str(), nullptr);
    reset();
    return true;
}
