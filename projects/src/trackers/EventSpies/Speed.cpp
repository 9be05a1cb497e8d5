#include "trackers/EventSpies/Speed.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

namespace {

constexpr char const* firstName = "Line Crossing 1";
constexpr char const* secondName = "Line Crossing 2";
constexpr double metresInKilometre = 1000.0;
constexpr double feetInMile = 5280.0;
constexpr double millisecondsInHour = 3600000.0;

/// Rounded; what the range does not hold is its nearest end.
uint32_t toUnsigned(double value)
{
    if (!(value >= 0.0))
        return 0;
    return value >= 4294967295.0 ? UINT32_MAX : static_cast<uint32_t>(value + 0.5);
}

rktl::String segmentXML(char const* tag, rkml::LineSegment2D<float> const& segment)
{
    rktl::String const name(tag);
    return "<" + name + ">" + segment.first().toXML("first") + segment.second().toXML("second") + "</" + name + ">";
}

rkml::LineSegment2D<float> parseSegment(rkxml::DomIterator const& element)
{
    rkml::Point2D<float> first, second;
    for (auto child = element.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        if (child.getName() == "first")
            first.fromXML(child.toXML().c_str());
        else if (child.getName() == "second")
            second.fromXML(child.toXML().c_str());
    }
    return {first, second};
}

} // namespace

Speed::Speed()
    : Speed("", "", {}, {}, 55, 0, 0)
{
}

Speed::Speed(char const* name, char const* description, rkml::LineSegment2D<float> const& segment1,
    rkml::LineSegment2D<float> const& segment2, unsigned short speedLimit, int metric, unsigned short distance)
    : FrameEventSpy(name, description)
    , mMetric(metric)
    , mDistance(distance)
    , mSpeedLimit(speedLimit)
    , mFirstLine(firstName, "", segment1, 0)
    , mSecondLine(secondName, "", segment2, 0)
{
    updateTimeParam();
}

Speed::Speed(Speed const& other)
    : FrameEventSpy(other)
    , EventSpy::Listener()
    , mMetric(other.mMetric)
    , mDistance(other.mDistance)
    , mSpeedLimit(other.mSpeedLimit)
    , mMinTime(other.mMinTime)
    , mFirstLine(other.mFirstLine)
    , mSecondLine(other.mSecondLine)
{
}

Speed& Speed::operator=(Speed const& other)
{
    FrameEventSpy::operator=(other);
    mMetric = other.mMetric;
    mMinTime = other.mMinTime;
    mDistance = other.mDistance;
    mSpeedLimit = other.mSpeedLimit;
    mFirstLine = other.mFirstLine;
    mSecondLine = other.mSecondLine;
    return *this;
}

unsigned int Speed::getTypeId() const
{
    return 1019;
}

rktl::String Speed::getTypeName() const
{
    return "SpeedSpy";
}

Speed* Speed::clone() const
{
    return new Speed(*this);
}

rktl::String Speed::getFriendlyName() const
{
    return "Speed";
}

unsigned int Speed::getFilterMask() const
{
    return 11;
}

void Speed::getShapes(std::vector<SpyShape>& shapes) const
{
    for (auto const& [label, line] : {std::pair("line 1", &mFirstLine), std::pair("line 2", &mSecondLine)}) {
        std::vector<SpyShape> own;
        line->getShapes(own);
        own.front().label = label;
        shapes.push_back(own.front());
    }
}

rktl::String Speed::getRuleText() const
{
    return rktl::String::fromFormat("alarms at more than %d %s, %d %s between the lines", mSpeedLimit.value,
        mMetric ? "km/h" : "mph", mDistance.value, mMetric ? "m" : "ft");
}

void Speed::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (mDistance <= 0)
        faults.push_back(rktl::String::fromFormat("distance: nothing is too fast over %d", mDistance.value));
    if (mSpeedLimit <= 0)
        faults.push_back(rktl::String::fromFormat("speed-limit: nothing alarms at %d", mSpeedLimit.value));
    for (auto const& [element, line] : {std::pair("first-segment", &mFirstLine), std::pair("second-segment", &mSecondLine)}) {
        std::vector<rktl::String> own;
        line->findFaults(own);
        for (rktl::String const& fault : own)
            faults.push_back(rktl::String(element) + ": " + fault);
    }
}

void Speed::reset()
{
    FrameEventSpy::reset();
    mCandidates.clear();
    for (LineCrossingSpy* const line : {&mFirstLine, &mSecondLine}) {
        line->reset();
        line->setListener(this);
    }
}

/// In single precision up to the hours.
void Speed::updateTimeParam()
{
    mMinTime = rktl::ElapsedTime();
    if (mSpeedLimit == 0)
        return;
    float const unit = static_cast<float>(mMetric ? metresInKilometre : feetInMile);
    float const hours = static_cast<float>(mDistance.value) / unit / static_cast<float>(mSpeedLimit.value);
    mMinTime = rktl::ElapsedTime::fromHours(double(hours));
}

// ---- The rule ----

void Speed::onEvent(Event const& event)
{
    auto const uid = mIsFirst ? &Candidate::mFirstUid : &Candidate::mSecondUid;
    auto const time = mIsFirst ? &Candidate::mFirstTime : &Candidate::mSecondTime;
    if (std::ranges::find(mCandidates, event.getUID(), uid) != mCandidates.end())
        return; // it goes on, as nearly always: an event has one object here, and its start never changes
    event.visitObjectIDs(event.getOrigin(), [&](int32_t id) {
        Candidate& crosser = candidate(static_cast<uint32_t>(id));
        crosser.*uid = event.getUID();
        crosser.*time = event.getStart().second;
    });
}

Speed::Candidate& Speed::candidate(uint32_t objectId)
{
    auto const place = std::ranges::lower_bound(mCandidates, objectId, {}, &Candidate::mObjectId);
    if (place != mCandidates.end() && place->mObjectId == objectId)
        return *place;
    return *mCandidates.insert(place, {.mObjectId = objectId});
}

/// A candidate stays as long as its object, so that one that was too fast extends its event until it leaves.
void Speed::internalSpy(ProcessFrame const& frame)
{
    mIsFirst = true;
    mFirstLine.spy(frame, view());
    mIsFirst = false;
    mSecondLine.spy(frame, view());
    rktl::ElapsedTime const notYet;
    for (Candidate const& candidate : mCandidates) {
        if (candidate.mFirstTime == notYet || candidate.mSecondTime == notYet)
            continue;
        rktl::ElapsedTime const taken = (candidate.mFirstTime - candidate.mSecondTime).abs();
        if (taken < mMinTime)
            addEventObject(candidate.mObjectId, frame, -1.0, nullptr,
                eventOf(candidate.mObjectId) == 0 ? speedText(taken).c_str() : nullptr);
    }
    std::erase_if(mCandidates, [&](Candidate const& candidate) { return !view().find(candidate.mObjectId); });
}

rktl::String Speed::speedText(rktl::ElapsedTime const& taken) const
{
    double const hours = static_cast<double>(taken.toMilliseconds()) / millisecondsInHour;
    if (!(hours > 0.0))
        return "Unkown Speed";
    double const speed = mDistance.value / (mMetric ? metresInKilometre : feetInMile) / hours;
    return rktl::String::fromFormat("%d %s", static_cast<int32_t>(toUnsigned(speed)), mMetric ? "km/h" : "mph");
}

// ---- Forms ----

rktl::String Speed::toXML(char const* tag) const
{
    return wrapXML(tag,
        mSpeedLimit.toXML("speed-limit") + mDistance.toXML("distance") + "<unit>" + (mMetric ? "metric" : "english") + "</unit>" +
            segmentXML("first-segment", mFirstLine.getSegment()) + segmentXML("second-segment", mSecondLine.getSegment()));
}

bool Speed::fromXML(char const* xml)
{
    bool const isRead = unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const text = element.toXML();
        if (name == "speed-limit")
            mSpeedLimit.fromXML(text.c_str());
        else if (name == "distance")
            mDistance.fromXML(text.c_str());
        else if (name == "unit")
            mMetric = element.getValue() == "english" ? 0 : 1;
        else if (name == "first-segment")
            mFirstLine.setLineSegment(parseSegment(element));
        else if (name == "second-segment")
            mSecondLine.setLineSegment(parseSegment(element));
        return true;
    });
    if (!isRead)
        return false;
    updateTimeParam();
    reset();
    return true;
}

bool Speed::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::Integer(mMetric) << mDistance << mSpeedLimit;
    for (LineCrossingSpy const* const line : {&mFirstLine, &mSecondLine})
        stream << line->getSegment().first() << line->getSegment().second();
    return true;
}

bool Speed::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::Integer metric;
    stream >> metric >> mDistance >> mSpeedLimit;
    mMetric = metric.value;
    for (LineCrossingSpy* const line : {&mFirstLine, &mSecondLine}) {
        rkml::Point2D<float> first, second;
        stream >> first >> second;
        line->setLineSegment({first, second});
    }
    updateTimeParam();
    return true;
}
