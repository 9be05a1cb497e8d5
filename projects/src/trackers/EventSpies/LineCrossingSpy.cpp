#include "trackers/EventSpies/LineCrossingSpy.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rktl_Exception.h"
#include "streams/rkxml_DomIterator.h"

namespace {

rktl::ElapsedTime const defaultMinAge = rktl::ElapsedTime::fromSeconds(1);

template <class Value> Value read(rktl::String const& xml)
{
    Value value;
    value.fromXML(xml.c_str());
    return value;
}

} // namespace

LineCrossingSpy::LineCrossingSpy()
    : FrameEventSpy("", "")
{
}

LineCrossingSpy::LineCrossingSpy(
    char const* name, char const* description, rkml::LineSegment2D<float> const& segment, int16_t minDistance)
    : FrameEventSpy(name, description)
{
    setMinDistance(static_cast<uint32_t>(minDistance));
    setSegment(segment);
}

LineCrossingSpy::LineCrossingSpy(LineCrossingSpy const& other)
    : FrameEventSpy(other)
    , LineCrossing<float>()
{
    *this = other;
}

LineCrossingSpy& LineCrossingSpy::operator=(LineCrossingSpy const& other)
{
    if (this == &other)
        return *this;
    FrameEventSpy::operator=(other);
    setLineSegment(other.getSegment());
    setCrossLine(other.getCrossLine());
    setDirection(other.getDirection());
    reset();
    return *this;
}

unsigned int LineCrossingSpy::getTypeId() const
{
    return 1008;
}

rktl::String LineCrossingSpy::getTypeName() const
{
    return "LineCrossingSpy";
}

LineCrossingSpy* LineCrossingSpy::clone() const
{
    return new LineCrossingSpy(*this);
}

rktl::String LineCrossingSpy::getFriendlyName() const
{
    return "Line Crossing";
}

unsigned int LineCrossingSpy::getFilterMask() const
{
    return 15;
}

void LineCrossingSpy::setLineSegment(rkml::LineSegment2D<float> const& segment)
{
    setSegment(segment);
}

void LineCrossingSpy::reset()
{
    FrameEventSpy::reset();
    forgetObjects();
}

void LineCrossingSpy::onFrameResize(unsigned int width, unsigned int height)
{
    setFrameSize(width, height);
    FrameEventSpy::onFrameResize(width, height);
}

void LineCrossingSpy::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (getSegment().length() == 0.0)
        faults.push_back("first, second: a line of no length is crossed by nothing");
    else if (!getSegment().first().isFinite() || !getSegment().second().isFinite())
        faults.push_back("first, second: the line has a coordinate that is no finite number");
}

void LineCrossingSpy::getShapes(std::vector<SpyShape>& shapes) const
{
    shapes.push_back({"line", rkml::Polygon2D<float>({getSegment().first(), getSegment().second()}), getDirection()});
}

rktl::String LineCrossingSpy::getRuleText() const
{
    char const* const ways[] = {"either way", "to the right or below", "to the left or above"};
    return rktl::String::fromFormat("alarms when %s is across, %s, from %u px on",
        getCrossLine() ? "the whole object" : "a part of the object", ways[getDirection()], getMinDistance());
}

// ---- The rule ----

void LineCrossingSpy::internalSpy(ProcessFrame const& frame)
{
    if (getPixelLine().length() == 0.0)
        return;
    if (mStartPosition < rktl::ElapsedTime())
        mStartPosition = frame.getTimeStamp().toElapsedTime();
    if (frame.getWidth() == 0 || frame.getHeight() == 0)
        return;
    // Only objects that get this far keep their state: the others start afresh when they come back.
    mTrippedObjects.begin();
    for (Sighting const& seen : view().sightings()) {
        if (!seen.hasPath || seen.isStatic || seen.state <= Object::nascent)
            continue;
        TrippedObj* const known = mTrippedObjects.keep(seen.id);
        if (!known)
            mTrippedObjects.add(seen.id, enter(seen));
        else if (seen.state != Object::purged)
            judge(*known, seen, frame);
    }
    mTrippedObjects.end();
}

/// What an object did before the spy was there counts for nothing.
LineCrossing<float>::TrippedObj LineCrossingSpy::enter(Sighting const& seen) const
{
    TrippedObj tripped;
    tripped.mBox = seen.object->getFirstSeen().toElapsedTime() < mStartPosition ? seen.box : seen.object->getFirstBox();
    return tripped;
}

void LineCrossingSpy::judge(TrippedObj& tripped, Sighting const& seen, ProcessFrame const& frame)
{
    if (checkObject(seen, tripped) && isWithinMaxSize(seen.box) &&
        static_cast<uint32_t>(tripped.mMaxDistance) >= getMinDistance() && seen.age >= getMinAge())
        addEventObject(seen.object->getId(), frame, -1.0, nullptr, nullptr);
}

// ---- Forms ----

rktl::String LineCrossingSpy::toXML(char const* tag) const
{
    return wrapXML(tag,
        getSegment().first().toXML("first") + getSegment().second().toXML("second") + mCrossLine.toXML("cross-line") +
            rktl::Integer(getDirection()).toXML("direction"));
}

bool LineCrossingSpy::fromXML(char const* xml)
{
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd() || !root.hasChildren())
        return false;
    reset();
    setMinAge(defaultMinAge);
    rkml::Point2D<float> first, second;
    bool const isRead = unwrapXML(xml, [&](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const text = element.toXML();
        if (name == "first")
            first.fromXML(text.c_str());
        else if (name == "second")
            second.fromXML(text.c_str());
        else if (name == "min-distance")
            setMinDistance(element.getValue().toUnsignedInt());
        else if (name == "min-age")
            setMinAge(read<rktl::ElapsedTime>(text));
        else if (name == "cross-line")
            mCrossLine.fromXML(text.c_str());
        else if (name == "direction")
            return setDirection(read<rktl::Integer>(text));
        return true;
    });
    if (isRead)
        setLineSegment({first, second});
    return isRead;
}

bool LineCrossingSpy::serialize(rksl::MemIOStream& stream) const
{
    try {
        if (!FrameEventSpy::serialize(stream))
            return false;
        stream << getSegment().first() << getSegment().second() << mCrossLine << rktl::Integer(getDirection());
    } catch (rktl::Exception const&) {
        return false;
    }
    return true;
}

bool LineCrossingSpy::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rkml::Point2D<float> first, second;
    stream >> first >> second;
    setLineSegment({first, second});
    reset();
    rktl::Integer direction;
    stream >> mCrossLine >> direction;
    return setDirection(direction);
}
