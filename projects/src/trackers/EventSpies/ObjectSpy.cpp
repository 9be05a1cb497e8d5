#include "trackers/EventSpies/ObjectSpy.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

ObjectSpy::ObjectSpy()
    : ObjectSpy("", "", 0.5f, rktl::ElapsedTime::fromSeconds(1), rktl::ElapsedTime::fromSeconds(2))
{
}

ObjectSpy::ObjectSpy(char const* name, char const* description, float minConfidence, rktl::ElapsedTime const& minValidTime,
    rktl::ElapsedTime const& maxInvalidTime)
    : FrameEventSpy(name, description)
    , mMinConfidence(double(minConfidence))
    , mMinValidTime(minValidTime)
    , mMaxInvalidTime(maxInvalidTime)
{
}

ObjectSpy::ObjectSpy(ObjectSpy const& other)
    : FrameEventSpy(other)
    , mNonContiguous(other.mNonContiguous)
    , mTrackNascent(other.mTrackNascent)
    , mMinConfidence(other.mMinConfidence)
    , mMinValidTime(other.mMinValidTime)
    , mMaxInvalidTime(other.mMaxInvalidTime)
{
}

ObjectSpy& ObjectSpy::operator=(ObjectSpy const& other)
{
    FrameEventSpy::operator=(other);
    mNonContiguous = other.mNonContiguous;
    mTrackNascent = other.mTrackNascent;
    mMinConfidence = other.mMinConfidence;
    mMinValidTime = other.mMinValidTime;
    mMaxInvalidTime = other.mMaxInvalidTime;
    return *this;
}

unsigned int ObjectSpy::getTypeId() const
{
    return 1011;
}

rktl::String ObjectSpy::getTypeName() const
{
    return "ObjectSpy";
}

ObjectSpy* ObjectSpy::clone() const
{
    return new ObjectSpy(*this);
}

rktl::String ObjectSpy::getFriendlyName() const
{
    return "Object Spy";
}

unsigned int ObjectSpy::getFilterMask() const
{
    return 8;
}

void ObjectSpy::getShapes(std::vector<SpyShape>&) const { }

rktl::String ObjectSpy::getRuleText() const
{
    return rktl::String::fromFormat("alarms when an object is gone that was seen for %s or longer with a confidence of %.3g",
        mMinValidTime.toHumanString(false).c_str(), mMinConfidence.value);
}

void ObjectSpy::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (!(mMinConfidence.value <= 1.0))
        faults.push_back(rktl::String::fromFormat("min-conf: no confidence reaches %g", mMinConfidence.value));
}

void ObjectSpy::reset()
{
    FrameEventSpy::reset();
    mActive.clear();
}

void ObjectSpy::onErase(uint32_t) { }

void ObjectSpy::onNewEvent(Event&, Frame const&) { }

// ---- The rule ----

void ObjectSpy::internalSpy(ProcessFrame const& frame)
{
    bool const isEnd = (frame.getFlags() & Frame::endOfClip) != 0;
    Event::Moment const now = moment(frame);
    auto const stays = [&](uint32_t, ObjectEvent const& entry) {
        if (!isEnd && now.second - entry.mStop.second < mMaxInvalidTime)
            return true;
        close(entry);
        return false;
    };
    mActive.begin();
    for (Sighting const& seen : view().sightings()) {
        if (seen.state <= Object::purged && !(mTrackNascent && seen.state == Object::nascent))
            continue;
        ObjectEvent const* const entry = watch(seen, frame, now, mActive.keep(seen.id, stays));
        if (entry && !stays(seen.id, *entry))
            mActive.drop();
    }
    mActive.end(stays);
}

/// Null for an object that is not watched, or no longer.
ObjectSpy::ObjectEvent* ObjectSpy::watch(
    Sighting const& seen, ProcessFrame const& frame, Event::Moment const& now, ObjectEvent* known)
{
    Object const& object = *seen.object;
    float const confidence = computeConfidence(object);
    bool const isSure = double(confidence) >= mMinConfidence;
    if (!known) {
        if (!isSure)
            return nullptr;
        ObjectEvent& entry = mActive.add(seen.id, enter(object, confidence, frame));
        updateConfidence(object, confidence, frame, entry);
        return &entry;
    }
    if (isSure) {
        updateConfidence(object, confidence, frame, *known);
        known->mStop = now;
        known->mValidFrames = known->mValidFrames + 1;
        known->mValid = known->mStop.second - known->mStart.second >= mMinValidTime;
    } else if (!mNonContiguous && !known->mValid) {
        onErase(object.getId());
        mActive.drop();
        return nullptr;
    }
    return known;
}

ObjectSpy::ObjectEvent ObjectSpy::enter(Object const& object, float confidence, ProcessFrame const& frame)
{
    ObjectEvent entry;
    entry.mFrame = getFramePtr(frame);
    entry.mObjectId = object.getId();
    entry.mConfidence = confidence;
    entry.mStart = entry.mStop = moment(frame);
    entry.mValid = mMinValidTime == rktl::ElapsedTime();
    entry.mValidFrames = 1;
    return entry;
}

float ObjectSpy::computeConfidence(Object const& object) const
{
    if (getClasses().empty())
        return 1.0f;
    double sum = 0.0;
    unsigned int count = 0;
    for (rktl::String const& name : getClasses()) {
        if (!object.getClasses().count(name))
            continue;
        double const confidence = object.getClassConfidence(name);
        sum += confidence < 0.0 ? 1.0 : confidence;
        ++count;
    }
    return count == 0 ? -1.0f : static_cast<float>(sum / count);
}

void ObjectSpy::updateConfidence(Object const&, float confidence, Frame const& frame, ObjectEvent& entry)
{
    if (!(entry.mConfidence < confidence))
        return;
    rktl::SmartPtr<Frame> const& copy = getFramePtr(frame);
    if (!copy)
        return;
    entry.mFrame = copy;
    entry.mConfidence = confidence;
    entry.mDescription = getDescription();
}

void ObjectSpy::close(ObjectEvent const& entry)
{
    if (entry.mValid)
        addObjectEvent(entry);
    onErase(entry.mObjectId);
}

void ObjectSpy::addObjectEvent(ObjectEvent const& entry)
{
    uint16_t percent = 0;
    toPercent(double(entry.mConfidence), percent);
    Event event(entry.mStart, entry.mStop, getAlarmType(), getPriority(), percent);
    event.setUID(eventOf(entry.mObjectId));
    event.addObject(entry.mObjectId, originText());
    event.setAttribute("valid-frames", rktl::String::fromFormat("%d", entry.mValidFrames.value));
    event.setDescription(entry.mDescription);
    onNewEvent(event, *entry.mFrame);
    setEventOf(entry.mObjectId, addEvent(std::move(event), entry.mFrame.get(), false));
}

// ---- Forms ----

rktl::String ObjectSpy::toXML(char const* tag) const
{
    return wrapXML(tag,
        mMinConfidence.toXML("min-conf") + mMinValidTime.toXML("min-valid-time") + mMaxInvalidTime.toXML("max-invalid-time") +
            (mNonContiguous ? "<non-contiguous/>" : "") + (mTrackNascent ? "<track-nascent/>" : ""));
}

bool ObjectSpy::fromXML(char const* xml)
{
    mNonContiguous = mTrackNascent = false;
    return unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const text = element.toXML();
        if (name == "min-conf")
            mMinConfidence.fromXML(text.c_str());
        else if (name == "min-valid-time" || name == "min-life")
            mMinValidTime.fromXML(text.c_str());
        else if (name == "max-invalid-time" || name == "max-death")
            mMaxInvalidTime.fromXML(text.c_str());
        else if (name == "non-contiguous")
            mNonContiguous = true;
        else if (name == "track-nascent")
            mTrackNascent = true;
        return true;
    });
}

bool ObjectSpy::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::Integer(mNonContiguous ? 1 : 0) << rktl::Integer(mTrackNascent ? 1 : 0) << mMinConfidence << mMinValidTime
           << mMaxInvalidTime;
    return true;
}

bool ObjectSpy::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::Integer nonContiguous, trackNascent;
    stream >> nonContiguous >> trackNascent >> mMinConfidence >> mMinValidTime >> mMaxInvalidTime;
    mNonContiguous = nonContiguous != 0;
    mTrackNascent = trackNascent != 0;
    mActive.clear();
    return true;
}
