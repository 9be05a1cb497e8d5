#include "BaseClasses/Event.h"

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace {

constexpr std::array<char const*, 4> statusNames = {"New", "Reviewed", "Flagged", "Deleted"};
constexpr char const* imageOfEvents = "Native Image";
rktl::ElapsedTime const positionUnknown = rktl::ElapsedTime::fromMilliseconds(-1);

/// Where an id stands in a list of ids, or belongs.
struct Place {
    size_t offset; // of its text
    bool isThere;
};

/// Nothing for a list that is not ascending or not as we write it, such as one that somebody sent. A list may have hundreds of
/// thousands of ids where one event goes on for all objects, so it is neither taken apart nor made anew.
std::optional<Place> placeOf(int32_t id, std::string_view list)
{
    char const *const begin = list.data(), *const end = begin + list.size();
    Place place{list.size(), false};
    int64_t last = INT64_MIN;
    for (char const* token = begin;; ++token) {
        int32_t value = 0;
        auto const [behind, error] = std::from_chars(token, end, value);
        if (error != std::errc() || value <= last || (behind != end && *behind != ','))
            return {};
        bool const hasLeadingZero = token[*token == '-' ? 1 : 0] == '0' && behind != token + 1;
        if (hasLeadingZero)
            return {};
        if (last < id && id <= value)
            place = {static_cast<size_t>(token - begin), id == value};
        if (behind == end)
            return place;
        last = value;
        token = behind;
    }
}

rktl::String inserted(int32_t id, rktl::String list, size_t offset)
{
    bool const isLast = offset == list.size();
    list.insert(offset, isLast ? "," + std::to_string(id) : std::to_string(id) + ",");
    return list;
}

MeridaneAddress addressOf(rktl::String const& origin)
{
    return MeridaneAddress(rktl::url(origin));
}

} // namespace

rksl::IntMap<rktl::String> Event::mPriorityStringMap = Event::getDefaultPriorityMap();

Event::Event(Moment const& start, Moment const& stop, rktl::String const& type, uint16_t priority, uint16_t confidence)
    : mType(type)
    , mStart(start)
    , mStop(stop)
    , mUpdated(rktl::TimeStamp::systemTime())
    , mPriority(static_cast<int16_t>(priority))
    , mConfidence(confidence)
{
}

bool Event::setConfidence(unsigned short percent)
{
    if (percent > 100)
        return false;
    mConfidence = percent;
    return true;
}

void Event::setStop(Moment const& stop)
{
    mStop = stop;
    mUpdated = rktl::TimeStamp::systemTime();
}

void Event::setReviewed(bool reviewed)
{
    mStatus = reviewed ? Reviewed : New;
    if (reviewed && !mFrames->empty())
        mFrames = {};
}

rktl::String Event::stringFromStatus(Status status)
{
    return status < statusNames.size() ? statusNames[status] : "";
}

bool Event::statusFromString(rktl::String const& text, Status& status)
{
    for (uint32_t value = 0; value < statusNames.size(); ++value)
        if (text.iCompare(statusNames[value]) == 0) {
            status = static_cast<Status>(value);
            return true;
        }
    return false;
}

rksl::IntMap<rktl::String> Event::getDefaultPriorityMap()
{
    rksl::IntMap<rktl::String> map;
    int32_t key = 0;
    for (char const* text : {"", "critical", "major", "minor", "warning", "info"})
        map[key++] = text;
    return map;
}

rktl::String Event::priorityToString(short priority)
{
    rktl::String text;
    mPriorityStringMap.peek(int32_t(priority), text);
    return text;
}

short Event::stringToPriority(rktl::String const& text)
{
    for (auto const& [key, value] : mPriorityStringMap)
        if (value == text)
            return static_cast<short>(key.value);
    return -1;
}

// ---- Where from ----

bool Event::setOrigin(rktl::String const& origin, bool renameAll)
{
    if (origin.empty())
        return false;
    if (renameAll) {
        for (Frame& frame : mFrames.change())
            frame.setOrigin(origin);
        auto const listed = mObjects->find(*mOrigin);
        if (listed != mObjects->end() && origin != *mOrigin) {
            rktl::String const ids = listed->second;
            mObjects.change().erase(*mOrigin);
            mObjects.change()[origin] = ids;
        }
    }
    if (*mOrigin != origin)
        mOrigin.change() = origin;
    return true;
}

bool Event::addComponentOrigin(rktl::String const& origin)
{
    if (origin.empty())
        return false;
    mObjects.change().try_emplace(origin);
    return true;
}

void Event::getComponentOrigins(rksl::Set<rktl::String>& origins, bool withOwnOrigin) const
{
    origins.clear();
    for (auto const& [origin, ids] : *mObjects)
        origins.insert(origin);
    for (Frame const& frame : *mFrames)
        origins.insert(frame.getOrigin());
    if (withOwnOrigin)
        origins.insert(*mOrigin);
}

rktl::String Event::getSpyName() const
{
    return addressOf(*mOrigin).getSpyName(false);
}

rktl::String Event::getDisplayName() const
{
    MeridaneAddress const address = addressOf(*mOrigin);
    rktl::String name = address.getSpyName(true);
    if (name.empty())
        name = address.getCameraName(true);
    if (name.empty())
        name = address.getMachine();
    if (name.empty() || mSubtitle.empty())
        return name.empty() ? mSubtitle : name;
    return name + ":" + mSubtitle;
}

// ---- Frames ----

void Event::addFrame(Frame const& frame, rktl::String const& origin, bool keepAll)
{
    rksl::List<Frame>& frames = mFrames.change();
    if (!keepAll && frames.size() == framesMax)
        frames.pop_back();
    frames.emplace_back();
    Frame& kept = frames.back();
    kept.setFromWithoutImages(frame);
    kept.setOrigin(origin);
    rksl::Set<rktl::String> names;
    names.insert(imageOfEvents);
    kept.setImageNames(names);
    kept.setHasObjects(true);
    if (!keepAll)
        mStatus = New;
    kept.setFullTracks();
}

void Event::setFrameAttributes(rktl::String const& name, rktl::String const& value)
{
    for (Frame& frame : mFrames.change())
        frame.setAttribute(name, value);
}

void Event::mergeFrames(rksl::List<Event> const& events)
{
    rksl::Set<rktl::String> merged;
    for (Event const& event : events) {
        for (Frame const& frame : *event.mFrames)
            if (merged.insert(rktl::String(frame.getOrigin() + ":" + frame.getTimeStamp().toString("ISO8601"))).second)
                addFrame(frame, rktl::url(frame.getOrigin()), true);
        rksl::Set<rktl::String> origins;
        event.getComponentOrigins(origins, event.mType == "external");
        for (rktl::String const& text : origins) {
            rktl::url const origin(text);
            rksl::Set<rktl::Integer> ids;
            event.getObjectIDs(origin, ids);
            if (ids.empty())
                ids.insert(0);
            addObjects(ids, origin);
        }
    }
    mFrames.change().sort();
}

// ---- Objects ----

bool Event::addObject(uint32_t id, rktl::String const& origin)
{
    if (origin.empty())
        return false;
    auto const listed = mObjects->find(origin);
    if (listed == mObjects->end() || listed->second.empty()) { // as in nearly all events
        storeObjects(rktl::String::fromInteger(static_cast<int32_t>(id)), origin);
        return false;
    }
    if (auto const place = placeOf(static_cast<int32_t>(id), listed->second)) {
        if (!place->isThere)
            storeObjects(inserted(static_cast<int32_t>(id), listed->second, place->offset), origin);
        return place->isThere;
    }
    rksl::Set<rktl::Integer> ids;
    rktl::String::tokenize(listed->second, ",", ids);
    if (!ids.insert(static_cast<int32_t>(id)).second)
        return true;
    setObjects(ids, origin);
    return false;
}

bool Event::addObject(uint32_t id, Frame const& frame, rktl::String const& origin)
{
    if (addObject(id, origin) || std::find(mFrames->begin(), mFrames->end(), frame) != mFrames->end())
        return false;
    addFrame(frame, origin, false);
    return true;
}

bool Event::addObjects(rksl::Set<rktl::Integer> const& ids, rktl::String const& origin)
{
    if (origin.empty())
        return false;
    rksl::Set<rktl::Integer> all = ids;
    rktl::String::tokenize(objectsString(origin), ",", all);
    return setObjects(all, origin);
}

bool Event::storeObjects(rktl::String joined, rktl::String const& origin)
{
    if (origin.empty())
        return false;
    // Id 0 says "no objects", so it goes as soon as there are others.
    if (joined.size() > 2 && joined.hasPrefix("0,"))
        joined.erase(0, 2);
    mObjects.change()[origin] = std::move(joined);
    return true;
}

bool Event::getObjectIDs(rktl::String const& origin, rksl::Set<rktl::Integer>& ids) const
{
    if (origin.empty() || !mObjects->count(origin))
        return false;
    visitObjectIDs(origin, [&](int32_t id) { ids.insert(id); });
    ids.erase(0);
    return true;
}

rktl::String Event::objectsString(rktl::String const& origin) const
{
    rktl::String text;
    mObjects->peek(origin, text);
    return text;
}

void Event::getCameraObjects(rktl::String const& origin, rksl::Set<rktl::Integer>& ids) const
{
    rktl::String const camera = addressOf(origin).getCamera();
    for (auto const& [component, list] : *mObjects)
        if (addressOf(component).getCamera() == camera)
            getObjectIDs(component, ids);
}

void Event::getAlarmingObjects(std::map<rktl::String, Object>& objects) const
{
    objects.clear();
    for (Frame const& frame : *mFrames) {
        rksl::Set<rktl::Integer> ids;
        getObjectIDs(frame.getOrigin(), ids);
        for (rktl::Integer const& id : ids) {
            Object object;
            if (!frame.getObject(static_cast<uint32_t>(id.value), object))
                continue;
            if (frame.hasImage(imageOfEvents)) {
                rkil::MultiImage const& image = frame.getMultiImage(imageOfEvents);
                object.setAttribute("native-resolution", rktl::String::fromFormat("%dx%d", image.getWidth(), image.getHeight()));
            }
            objects.insert_or_assign(object.getAttribute("GUID"), object);
        }
    }
}

void Event::updateData(Event const& other, bool copyFrames)
{
    if (mUID != other.mUID)
        throw rktl::Exception("projects/src/BaseClasses/Event", "Event::updateData()", "Events do not match.");
    mStop = other.mStop;
    mObjects = other.mObjects;
    mStatus = other.mStatus;
    mPriority = other.mPriority;
    mConfidence = other.mConfidence;
    mType = other.mType;
    mAttributes = other.mAttributes;
    mUpdated = rktl::TimeStamp::systemTime();
    if (!copyFrames || other.mFrames->empty())
        return;
    auto const added = other.mFrames; // keeps them in place when other is this event
    rksl::List<Frame>& frames = mFrames.change();
    frames.insert(frames.end(), added->begin(), added->end());
}

// ---- Stored ----

unsigned int Event::getTypeId() const
{
    return 1001;
}

rktl::String Event::getTypeName() const
{
    return "Event";
}

rktl::String Event::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    rktl::String xml = "<" + name + ">" + mType.toXML("type") + mSubtitle.toXML("subtitle");
    xml += rktl::String::fromFormat("<priority>%d</priority><uid>%u</uid>", mPriority, mUID);
    xml += mStart.first.toXML("start") + (mStop.first - mStart.first).toXML("length") + mOrigin->toXML("origin");
    for (auto const& [origin, ids] : *mObjects)
        xml += "<objects origin=\"" + rktl::String::encodeHtml(origin) + "\">" + ids + "</objects>";
    xml += "<status>" + stringFromStatus(mStatus).toLower() + "</status>";
    xml += rktl::String::fromFormat("<confidence>%u</confidence>", mConfidence);
    xml += mAttributes->toXML("attributes") + "</" + name + ">";
    return xml;
}

bool Event::fromXML(char const* xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    mObjects.change().clear();
    rktl::ElapsedTime length;
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
        readElement(cursor, length);
    mStop.first = mStart.first + length;
    return true;
}

void Event::readElement(rkxml::DomIterator const& element, rktl::ElapsedTime& length)
{
    rktl::String const name = element.getName();
    rktl::String const value = element.getValue();
    rktl::String const xml = element.toXML();
    if (name == "start") {
        mStart.first.fromXML(xml.c_str());
        mStart.second = positionUnknown;
    } else if (name == "length") {
        length.fromXML(xml.c_str());
        mStop.second = positionUnknown;
    } else if (name == "type") {
        mType.fromXML(xml.c_str());
    } else if (name == "origin") {
        mOrigin.change().fromXML(xml.c_str());
    } else if (name == "subtitle") {
        mSubtitle.fromXML(xml.c_str());
    } else if (name == "priority") {
        mPriority = static_cast<int16_t>(value.toUnsignedInt());
    } else if (name == "uid") {
        mUID = value.toUnsignedInt();
    } else if (name == "objects" && element.hasAttribute("origin")) {
        mObjects.change()[element.getAttribute("origin")] = value;
    } else if (name == "status") {
        statusFromString(value, mStatus);
    } else if (name == "confidence") {
        mConfidence = static_cast<uint16_t>(value.toInteger());
    } else if (name == "attributes") {
        mAttributes.change().fromXML(xml.c_str());
    }
}

unsigned int Event::getBinLength() const
{
    return mOrigin->getBinLength() + mStart.first.getBinLength() + mStart.second.getBinLength() + mStop.first.getBinLength() +
        mStop.second.getBinLength() + mUpdated.getBinLength() + mType.getBinLength() + mSubtitle.getBinLength() +
        mObjects->getBinLength() + 4 + 2 + 4 + 2 + mFrames->getBinLength() + mAttributes->getBinLength();
}

unsigned int Event::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.record(*mOrigin);
    writer.record(mStart.first);
    writer.record(mStart.second);
    writer.record(mStop.first);
    writer.record(mStop.second);
    writer.record(mUpdated);
    writer.record(mType);
    writer.record(mSubtitle);
    writer.record(*mObjects);
    writer.u32(mStatus);
    writer.u16(static_cast<uint16_t>(mPriority));
    writer.u32(mUID);
    writer.u16(mConfidence);
    writer.record(*mFrames);
    writer.record(*mAttributes);
    return writer.written();
}

unsigned int Event::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    reader.record(mOrigin.change());
    reader.record(mStart.first);
    reader.record(mStart.second);
    reader.record(mStop.first);
    reader.record(mStop.second);
    reader.record(mUpdated);
    reader.record(mType);
    reader.record(mSubtitle);
    reader.record(mObjects.change());
    mStatus = static_cast<Status>(reader.u32());
    mPriority = static_cast<int16_t>(reader.u16());
    mUID = reader.u32();
    mConfidence = reader.u16();
    reader.record(mFrames.change());
    reader.record(mAttributes.change());
    return reader.position();
}
