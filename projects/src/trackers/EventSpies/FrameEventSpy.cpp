#include "trackers/EventSpies/FrameEventSpy.h"

#include "BaseClasses/ProcessFrame.h"
#include "math/rkml_Coordinate.h"
#include "misc/rktl_Double.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <sstream>

namespace {

int32_t limitInPixels(unsigned int size, float share)
{
    return rkml::coordinateCast<int>(static_cast<double>(static_cast<float>(size) * share));
}

float toFloat(rktl::String const& text)
{
    return strtof(text.c_str(), nullptr);
}

template <class List, class Item> void parseList(rkxml::DomIterator const& element, char const* itemName, List& list)
{
    list.clear();
    for (rkxml::DomIterator child = element.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        Item item;
        if (child.getName() == itemName && item.fromXML(child.toXML().c_str()))
            list.push_back(item);
    }
}

} // namespace

FrameEventSpy::FrameEventSpy(char const* name, char const* description)
    : EventSpy(name, description)
    , mMinAge(rktl::ElapsedTime::fromSeconds(1))
{
}

FrameEventSpy::FrameEventSpy(FrameEventSpy const& other)
    : EventSpy(other)
    , mZones(other.mZones)
    , mMaxWidth(other.mMaxWidth)
    , mMaxHeight(other.mMaxHeight)
    , mClasses(other.mClasses)
    , mMinDistance(other.mMinDistance)
    , mMinAge(other.mMinAge)
    , mAlarmBlobs(other.mAlarmBlobs)
{
}

FrameEventSpy& FrameEventSpy::operator=(FrameEventSpy const& other)
{
    EventSpy::operator=(other);
    mZones = other.mZones;
    mMaxWidth = other.mMaxWidth;
    mMaxHeight = other.mMaxHeight;
    mClasses = other.mClasses;
    mMinDistance = other.mMinDistance;
    mMinAge = other.mMinAge;
    mAlarmBlobs = other.mAlarmBlobs;
    forgetFrameSize();
    return *this;
}

void FrameEventSpy::setZones(rksl::List<rkml::Polygon2D<float>> const& zones)
{
    mZones = zones;
    forgetFrameSize();
}

void FrameEventSpy::setMaxWidth(float share)
{
    mMaxWidth = share;
    forgetFrameSize();
}

void FrameEventSpy::setMaxHeight(float share)
{
    mMaxHeight = share;
    forgetFrameSize();
}

unsigned int FrameEventSpy::getTypeId() const
{
    return 1020;
}

rktl::String FrameEventSpy::getTypeName() const
{
    return "FrameEventSpy";
}

// ---- Frames ----

void FrameEventSpy::spy(ProcessFrame const& frame)
{
    FrameView view;
    view.show(frame);
    spy(frame, view);
}

void FrameEventSpy::spy(ProcessFrame const& frame, FrameView& view)
{
    struct Use { // ends also when the rule throws
        FrameView*& slot;
        ~Use() { slot = nullptr; }
    } const use{mView};
    mView = &view;
    reserveFrameSize(frame.getWidth(), frame.getHeight());
    internalSpy(frame);
    clean(rktl::TimeStamp::systemTime());
}

rktl::SmartPtr<Frame> const& FrameEventSpy::keep(Frame const& frame)
{
    if (mKeptFrame && *mKeptFrame == frame)
        return mKeptFrame;
    if (isInView(frame))
        return mKeptFrame = mView->copy();
    mKeptFrame = rktl::SmartPtr<Frame>(new Frame);
    mKeptFrame->setFromWithoutImages(frame);
    return mKeptFrame;
}

void FrameEventSpy::reserveFrameSize(unsigned int width, unsigned int height)
{
    if (width == mFrameWidth && height == mFrameHeight)
        return;
    onFrameResize(width, height);
    mFrameWidth = width;
    mFrameHeight = height;
    if (width != 0 && height != 0)
        warnOfShapesOutside();
}

/// Configured for another camera, most likely: in this one the rule has nothing to look at there.
void FrameEventSpy::warnOfShapesOutside()
{
    rkml::BoundingBox<int> const frame(0, 0, static_cast<int>(mFrameWidth), static_cast<int>(mFrameHeight));
    std::vector<SpyShape> shapes;
    getShapes(shapes);
    for (SpyShape const& shape : shapes) {
        auto const pixels = shape.points.denormalize(frame.width, frame.height).points();
        auto const all = [&](auto const& isBeyond) { return std::all_of(pixels.begin(), pixels.end(), isBeyond); };
        if (all([&](auto const& point) { return point.x < 0; }) ||
            all([&](auto const& point) { return point.x > frame.width; }) ||
            all([&](auto const& point) { return point.y < 0; }) || all([&](auto const& point) { return point.y > frame.height; }))
            log(rktl::LogType::Warning,
                rktl::String::fromFormat(
                    "its %s lies outside of the frame of %dx%d", shape.label.c_str(), frame.width, frame.height));
    }
}

void FrameEventSpy::onFrameResize(unsigned int width, unsigned int height)
{
    reset();
    mPixelZones.clear();
    if (width == 0 || height == 0)
        return;
    for (rkml::Polygon2D<float> const& zone : mZones)
        mPixelZones.push_back(zone.denormalize(static_cast<int>(width), static_cast<int>(height)));
    boundZones();
    mMaxWidthPixels = limitInPixels(width, mMaxWidth);
    mMaxHeightPixels = limitInPixels(height, mMaxHeight);
}

/// A zone that is none is looked into everywhere, and throws.
void FrameEventSpy::boundZones()
{
    constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    mZonesFirst = {most, most};
    mZonesLast = {least, least};
    for (rkml::Polygon2D<int> const& zone : mPixelZones) {
        if (zone.points().size() < 3) {
            mZonesFirst = {least, least};
            mZonesLast = {most, most};
            return;
        }
        for (rkml::Point2D<int> const& point : zone.points()) {
            mZonesFirst = {std::min(mZonesFirst.x, point.x), std::min(mZonesFirst.y, point.y)};
            mZonesLast = {std::max(mZonesLast.x, point.x), std::max(mZonesLast.y, point.y)};
        }
    }
}

void FrameEventSpy::reset()
{
    auto const cache = events().getWritePtr(lockLimit);
    if (!cache)
        return;
    cache->clear();
    mObjectEvents.clear();
}

void FrameEventSpy::getRequiredImageTypes(rksl::StringMap<rktl::Integer>&) const { }

bool FrameEventSpy::isInZones(int x, int y) const
{
    if (mPixelZones.empty())
        return true;
    if (x < mZonesFirst.x || x > mZonesLast.x || y < mZonesFirst.y || y > mZonesLast.y)
        return false;
    return std::any_of(mPixelZones.begin(), mPixelZones.end(), [&](auto const& zone) { return zone.contains(x, y); });
}

// ---- Events ----

uint32_t FrameEventSpy::addEventObject(
    uint32_t objectId, Frame const& frame, double confidence, char const* subtitle, char const* description)
{
    auto const cache = events().getWritePtr(lockLimit);
    if (!cache)
        return 0;
    if (confidence == -1.0)
        confidence = confidenceOf(objectId, frame);
    uint32_t uid = 0;
    if (Event* const event = eventToExtend(*cache, objectId, frame)) {
        extend(*event, frame, confidence);
        uid = event->getUID();
    } else {
        Event fresh = newEvent(frame, confidence, subtitle, description);
        fresh.addObject(objectId, originText());
        uid = addEvent(std::move(fresh), isInView(frame) ? mView->copy().get() : &frame, false);
    }
    setEventOf(objectId, uid);
    return uid;
}

double FrameEventSpy::confidenceOf(uint32_t objectId, Frame const& frame) const
{
    Object const* const object = mClasses.empty() ? nullptr : frame.getObjects().findObject(objectId);
    if (!object)
        return 1.0;
    double highest = 0.0;
    for (rktl::String const& name : mClasses)
        highest = std::max(highest, object->getClassConfidence(name));
    return highest;
}

/// One event for all objects or one for each; null when there is none yet, or no longer.
Event* FrameEventSpy::eventToExtend(EventCache& cache, uint32_t objectId, Frame const& frame)
{
    if (getMergeEvents()) {
        Event* const event = cache.getFirstEvent();
        if (!event)
            return nullptr;
        if (event->getOrigin() != originText())
            mRenamedEvent = event->getUID();
        bool const isListed = mRenamedEvent != event->getUID() && eventOf(objectId) == event->getUID();
        if (!isListed)
            event->addObject(objectId, isInView(frame) ? *mView->copy() : frame, originText());
        return event;
    }
    return cache.getEvent(eventOf(objectId));
}

void FrameEventSpy::onEventCleaned(uint32_t uid)
{
    std::erase_if(mObjectEvents, [uid](ObjectEvent const& entry) { return entry.uid == uid; });
}

uint32_t FrameEventSpy::eventOf(uint32_t objectId) const
{
    auto const place = std::ranges::lower_bound(mObjectEvents, objectId, {}, &ObjectEvent::objectId);
    return place != mObjectEvents.end() && place->objectId == objectId ? place->uid : 0;
}

void FrameEventSpy::setEventOf(uint32_t objectId, uint32_t uid)
{
    auto const place = std::ranges::lower_bound(mObjectEvents, objectId, {}, &ObjectEvent::objectId);
    if (place != mObjectEvents.end() && place->objectId == objectId)
        place->uid = uid;
    else
        mObjectEvents.insert(place, {objectId, uid});
}

// ---- For people ----

void FrameEventSpy::getShapes(std::vector<SpyShape>& shapes) const
{
    addShapes(mZones, "zone", shapes);
}

void FrameEventSpy::addShapes(
    rksl::List<rkml::Polygon2D<float>> const& polygons, char const* label, std::vector<SpyShape>& shapes)
{
    for (rkml::Polygon2D<float> const& polygon : polygons)
        shapes.push_back({label, polygon, 0});
}

void FrameEventSpy::findFaults(std::vector<rktl::String>& faults) const
{
    findPolygonFaults(mZones, "zones", "zone", faults);
    if (!(mMaxWidth > 0.0f))
        faults.push_back(rktl::String::fromFormat("max-width: %g lets no object through", double(mMaxWidth)));
    if (!(mMaxHeight > 0.0f))
        faults.push_back(rktl::String::fromFormat("max-height: %g lets no object through", double(mMaxHeight)));
}

void FrameEventSpy::findPolygonFault(
    rkml::Polygon2D<float> const& polygon, rktl::String const& what, std::vector<rktl::String>& faults)
{
    size_t const count = polygon.points().size();
    if (count < 3)
        faults.push_back(rktl::String::fromFormat(
            "%s has %u point%s, it needs 3", what.c_str(), static_cast<unsigned int>(count), count == 1 ? "" : "s"));
    else if (!std::all_of(polygon.points().begin(), polygon.points().end(), [](auto const& point) { return point.isFinite(); }))
        faults.push_back(what + " has a coordinate that is no finite number");
}

void FrameEventSpy::findPolygonFaults(
    rksl::List<rkml::Polygon2D<float>> const& polygons, char const* element, char const* item, std::vector<rktl::String>& faults)
{
    unsigned int number = 0;
    for (rkml::Polygon2D<float> const& polygon : polygons)
        findPolygonFault(polygon, rktl::String::fromFormat("%s: %s %u", element, item, ++number), faults);
}

// ---- XML ----

void FrameEventSpy::onCreateXML(rktl::String& xml) const
{
    std::ostringstream text;
    text << "<zones>";
    for (rkml::Polygon2D<float> const& zone : mZones)
        text << std::string(zone.toXML("zone", "vertex"));
    text << "</zones><classes>";
    for (rktl::String const& name : mClasses)
        text << std::string(name.toXML("class"));
    text << "</classes><max-width>" << mMaxWidth << "</max-width><max-height>" << mMaxHeight << "</max-height>"
         << std::string(mMinAge.toXML("min-age")) << "<min-distance>" << mMinDistance << "</min-distance>";
    if (mAlarmBlobs)
        text << "<alarm-blobs>true</alarm-blobs>";
    xml = text.str();
}

bool FrameEventSpy::fromXML(char const* xml)
{
    mAlarmBlobs = false;
    mMaxWidth = mMaxHeight = 1.0f;
    forgetFrameSize();
    return EventSpy::fromXML(xml);
}

void FrameEventSpy::onParseXML(rkxml::DomIterator& element)
{
    rktl::String const name = element.getName();
    if (name == "zones")
        parseList<decltype(mZones), rkml::Polygon2D<float>>(element, "zone", mZones);
    else if (name == "classes")
        parseList<decltype(mClasses), rktl::String>(element, "class", mClasses);
    else if (name == "max-width")
        mMaxWidth = toFloat(element.getValue());
    else if (name == "max-height")
        mMaxHeight = toFloat(element.getValue());
    else if (name == "min-distance")
        mMinDistance = element.getValue().toUnsignedInt();
    else if (name == "min-age")
        mMinAge.fromXML(element.toXML().c_str());
    else if (name == "alarm-blobs")
        mAlarmBlobs = element.getValue().toBool();
}

bool FrameEventSpy::unwrapXML(char const* xml, std::function<bool(rkxml::DomIterator&)> const& readKey)
{
    return readChildren(xml, [&](rkxml::DomIterator& child) {
        return child.getName() == "EventSpy" ? FrameEventSpy::fromXML(child.toXML().c_str()) : readKey(child);
    });
}

// ---- Binary ----

bool FrameEventSpy::serialize(rksl::MemIOStream& stream) const
{
    stream << mZones << mClasses << rktl::Double(mMaxWidth) << rktl::Double(mMaxHeight) << mMinAge
           << rktl::Integer(static_cast<int32_t>(mMinDistance)) << rktl::Integer(mAlarmBlobs ? 1 : 0);
    return true;
}

bool FrameEventSpy::unserialize(rksl::MemIOStream& stream)
{
    rktl::Double width, height;
    rktl::Integer distance, blobs;
    stream >> mZones >> mClasses >> width >> height >> mMinAge >> distance >> blobs;
    mMaxWidth = static_cast<float>(width.value);
    mMaxHeight = static_cast<float>(height.value);
    mMinDistance = static_cast<uint32_t>(distance.value);
    mAlarmBlobs = blobs.value != 0;
    forgetFrameSize();
    return true;
}
