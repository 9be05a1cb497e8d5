#include "trackers/EventSpies/EventSpy.h"

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_Logger.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

namespace {

constexpr char const* defaultAlarmType = "alarm";
rktl::ElapsedTime const reviewedAge = rktl::ElapsedTime::fromSeconds(15);
rktl::ElapsedTime const defaultMaxAge = rktl::ElapsedTime::fromMinutes(5);

rktl::Integer readInteger(rksl::MemIOStream& stream)
{
    rktl::Integer value;
    stream >> value;
    return value;
}

} // namespace

std::atomic<uint32_t> EventSpy::mNextUID = 0;

EventSpy::EventSpy(char const* name, char const* description)
    : mName(name)
    , mDescription(description)
    , mMaxAge(defaultMaxAge)
{
}

EventSpy::EventSpy(EventSpy const& other)
    : rktl::Attributes(other)
    , rksl::Serializable(other)
    , mName(other.mName)
    , mGuid(other.mGuid)
    , mDescription(other.mDescription)
    , mMaxAge(other.mMaxAge)
    , mPriority(other.mPriority)
    , mMergeEvents(other.mMergeEvents)
    , mAlarmType(other.mAlarmType)
    , mLogger(other.mLogger)
{
}

EventSpy& EventSpy::operator=(EventSpy const& other)
{
    if (this == &other)
        return *this;
    rktl::Attributes::operator=(other);
    mName = other.mName;
    mGuid = other.mGuid;
    mDescription = other.mDescription;
    mMaxAge = other.mMaxAge;
    mPriority = other.mPriority;
    mMergeEvents = other.mMergeEvents;
    mAlarmType = other.mAlarmType;
    mLogger = other.mLogger;
    mListener = nullptr;
    mEvents.assign(EventCache(), lockLimit);
    return *this;
}

// ---- Events ----

bool EventSpy::getEvents(rksl::List<Event>& events)
{
    auto const cache = mEvents.getWritePtr(lockLimit);
    if (!cache)
        return false;
    cache->getEvents(events, false);
    return true;
}

bool EventSpy::getEvents(EventCache& gathered)
{
    auto const cache = mEvents.getWritePtr(lockLimit);
    if (!cache)
        return false;
    cache->getEvents(gathered);
    return true;
}

rktl::url EventSpy::defaultOrigin() const
{
    return MeridaneAddress::createURL("*", "*", mName, MeridaneAddress::localSite, rksl::StringMap<rktl::UUID>());
}

rktl::String const& EventSpy::originText()
{
    if (mOriginText.empty() || mOriginName != mName) {
        mOriginText = defaultOrigin();
        mOriginName = mName;
    }
    return mOriginText;
}

uint32_t EventSpy::addEvent(Event event, Frame const* frame, bool keepUid)
{
    auto const cache = mEvents.getWritePtr(lockLimit);
    if (!cache)
        return 0;
    event.setAttribute("spy-guid", mGuid.toString());
    event.updateAttributes(getAttributes());
    event.setOrigin(originText(), false);
    event.setSpyType(getTypeName());
    if (event.getUID() == 0 || !(keepUid || cache->exists(event.getUID())))
        event.setUID(++mNextUID);

    bool existed = false;
    Event& stored = cache->insert(std::move(event), existed);
    if (existed) { // and event is as it was
        event.setConfidence(std::max(event.getConfidence(), stored.getConfidence()));
        stored.updateData(event, false);
        stored.setReviewed(false);
    }
    if (frame && stored.getType() != "count") {
        rksl::StringMap<rktl::String> status;
        getStatus(status);
        if (!status.empty())
            stored.addNamespaceValues(mName, status, "");
        stored.addFrame(*frame, originText(), false);
    }
    tell(stored);
    return stored.getUID();
}

uint32_t EventSpy::addEventFrame(
    uint32_t eventUid, Frame const& frame, double confidence, char const* subtitle, char const* description)
{
    auto const cache = mEvents.getWritePtr(lockLimit);
    if (!cache)
        return 0;
    Event* const known = eventUid != 0 ? cache->getEvent(eventUid) : nullptr;
    if (!known)
        return addEvent(newEvent(frame, confidence, subtitle, description), &frame, false);
    extend(*known, frame, confidence);
    return eventUid;
}

bool EventSpy::toPercent(double confidence, uint16_t& percent)
{
    double const value = confidence * 100.0;
    if (!(value >= 0.0))
        return false;
    percent = value >= 65535.0 ? 65535 : static_cast<uint16_t>(value + 0.5);
    return true;
}

void EventSpy::extend(Event& event, Frame const& frame, double confidence)
{
    event.setReviewed(false);
    event.setStop(moment(frame));
    uint16_t percent = 0;
    if (toPercent(confidence, percent) && percent > event.getConfidence())
        event.setConfidence(percent);
    tell(event);
}

Event EventSpy::newEvent(Frame const& frame, double confidence, char const* subtitle, char const* description) const
{
    uint16_t percent = 0;
    toPercent(confidence, percent);
    Event event(moment(frame), moment(frame), mAlarmType, mPriority, percent);
    if (subtitle)
        event.setSubtitle(subtitle);
    if (description)
        event.setDescription(description);
    return event;
}

void EventSpy::tell(Event const& event)
{
    if (mListener)
        mListener->onEvent(event);
}

void EventSpy::clean(rktl::TimeStamp const& now)
{
    std::set<uint32_t> removed;
    {
        auto const cache = mEvents.getWritePtr(lockLimit);
        if (!cache)
            return;
        cache->setMaxTimes(reviewedAge, mMaxAge);
        cache->clean(now, &removed);
    }
    for (uint32_t const uid : removed)
        onEventCleaned(uid);
}

void EventSpy::onEventCleaned(uint32_t) { }

void EventSpy::getStatus(rksl::StringMap<rktl::String>&) { }

void EventSpy::findFaults(std::vector<rktl::String>&) const { }

bool EventSpy::log(rktl::LogType type, rktl::String const& text)
{
    return mLogger && mLogger->log(type, rktl::String(mName + ": " + text));
}

// ---- Forms ----

unsigned int EventSpy::getTypeId() const
{
    return 1002;
}

rktl::String EventSpy::getTypeName() const
{
    return "EventSpy";
}

rktl::String EventSpy::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    rktl::String xml = "<" + name + (mGuid.isValid() ? " guid=\"" + mGuid.toString() + "\">" : std::string(">"));
    xml += mName.toXML("name") + mDescription.toXML("desc") + mMaxAge.toXML("max-age");
    xml += rktl::String::fromFormat("<priority>%u</priority>", mPriority);
    if (mMergeEvents)
        xml += "<merge-events/>";
    if (mAlarmType != defaultAlarmType)
        xml += mAlarmType.toXML("alarm-type");
    rktl::String concrete;
    onCreateXML(concrete);
    xml += concrete;
    if (!mAttributes->empty())
        xml += mAttributes->toXML("attributes");
    xml += "</" + name + ">";
    return xml;
}

bool EventSpy::fromXML(char const* xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    mAttributes.change().clear();
    mMergeEvents = false;
    mAlarmType = defaultAlarmType;
    mGuid = rktl::UUID();
    mGuid.fromString(cursor.getAttribute("guid"));
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
        parseElement(cursor);
    auto const cache = mEvents.getWritePtr(lockLimit);
    if (cache)
        cache->clear();
    return true;
}

void EventSpy::parseElement(rkxml::DomIterator& element)
{
    rktl::String const name = element.getName();
    rktl::String const xml = element.toXML();
    if (name == "name")
        mName.fromXML(xml.c_str());
    else if (name == "desc")
        mDescription.fromXML(xml.c_str());
    else if (name == "max-age")
        mMaxAge.fromXML(xml.c_str());
    else if (name == "priority")
        mPriority = static_cast<uint16_t>(element.getValue().toUnsignedInt());
    else if (name == "merge-events")
        mMergeEvents = true;
    else if (name == "alarm-type")
        mAlarmType.fromXML(xml.c_str());
    else if (name == "attributes")
        mAttributes.change().fromXML(xml.c_str());
    else
        onParseXML(element);
}

rktl::String EventSpy::wrapXML(char const* tag, rktl::String const& keys) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    return "<" + name + ">" + EventSpy::toXML("EventSpy") + keys + "</" + name + ">";
}

bool EventSpy::readChildren(char const* xml, std::function<bool(rkxml::DomIterator&)> const& readChild)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
        if (!readChild(cursor))
            return false;
    return true;
}

bool EventSpy::internalSerialize(rksl::MemIOStream& stream) const
{
    stream << mName << mGuid << mDescription << mMaxAge << rktl::Integer(mPriority) << rktl::Integer(mMergeEvents ? 1 : 0)
           << mAlarmType << *mAttributes;
    return serialize(stream);
}

unsigned int EventSpy::getBinLength() const
{
    rksl::MemIOStream stream;
    return internalSerialize(stream) ? stream.getBinLength() : 0;
}

unsigned int EventSpy::toBin(unsigned char* out) const
{
    rksl::MemIOStream stream;
    if (!internalSerialize(stream))
        throw rktl::Exception("rksl::Serializable::fromBin() - Failed!");
    return stream.toBin(out);
}

unsigned int EventSpy::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::MemIOStream stream;
    unsigned int const used = stream.fromBin(in, length);
    stream >> mName >> mGuid >> mDescription >> mMaxAge;
    mPriority = static_cast<uint16_t>(readInteger(stream));
    mMergeEvents = readInteger(stream) != 0;
    stream >> mAlarmType >> mAttributes.change();
    if (!unserialize(stream))
        throw rktl::Exception("rksl::Serializable::fromBin() - Failed!");
    return used;
}
