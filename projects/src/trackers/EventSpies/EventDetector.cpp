#include "trackers/EventSpies/EventDetector.h"

#include "BaseClasses/ProcessFrame.h"
#include "trackers/EventSpies/EventDetectorParams.h"
#include "trackers/EventSpies/EventSpyFactory.h"

#include <algorithm>
#include <utility>

namespace {

rktl::ElapsedTime const defaultInterval = rktl::ElapsedTime::fromMilliseconds(200);

} // namespace

EventDetector::EventDetector()
    : mInterval(defaultInterval)
{
}

bool EventDetector::supports(char const* wanted, rkpl::Plugin** result)
{
    return answers<EventDetection>(this, wanted, result) || VideoProcess::supports(wanted, result);
}

// ---- Spies and events ----

bool EventDetector::getEvents(rksl::List<Event>& events)
{
    auto const gathered = mEvents.getWritePtr(lockLimit);
    if (!gathered)
        return false;
    gathered->getEvents(events, true);
    return true;
}

bool EventDetector::addSpy(EventSpy const* spy)
{
    auto const* const frameSpy = dynamic_cast<FrameEventSpy const*>(spy);
    if (!frameSpy)
        return false;
    auto const spies = mSpies.getWritePtr(lockLimit);
    return spies && putSpy(*spies, *frameSpy);
}

bool EventDetector::setSpy(EventSpy const* spy)
{
    auto const* const frameSpy = dynamic_cast<FrameEventSpy const*>(spy);
    if (!frameSpy)
        return false;
    auto const spies = mSpies.getWritePtr(lockLimit);
    return spies && has(*spies, frameSpy->getName()) && putSpy(*spies, *frameSpy);
}

EventDetector::Spies::iterator EventDetector::place(Spies& spies, rktl::String const& name)
{
    return std::ranges::lower_bound(spies, name, {}, &Spies::value_type::first);
}

bool EventDetector::has(Spies const& spies, rktl::String const& name)
{
    return std::ranges::binary_search(spies, name, {}, &Spies::value_type::first);
}

/// Null when it is new.
EventDetector::SpyPtr& EventDetector::entry(Spies& spies, rktl::String const& name)
{
    return has(spies, name) ? place(spies, name)->second : spies.emplace(place(spies, name), name, SpyPtr())->second;
}

bool EventDetector::erase(Spies& spies, rktl::String const& name)
{
    return std::erase_if(spies, [&](auto const& spy) { return spy.first == name; }) > 0;
}

bool EventDetector::putSpy(Spies& spies, FrameEventSpy const& spy) const
{
    auto const cloneOf = [this](EventSpy const& original) {
        SpyPtr clone(dynamic_cast<FrameEventSpy*>(original.clone()));
        clone->setLogger(getLogger());
        return clone;
    };
    SpyPtr& running = entry(spies, spy.getName());
    running = cloneOf(spy);
    EventSpyFactory factory;
    if (!factory.fromXML(spy.toXML().c_str()))
        return false;
    running = cloneOf(*factory.getSpy());
    return true;
}

bool EventDetector::getSpies(std::list<EventSpyFactory>& list) const
{
    auto const spies = mSpies.getReadPtr(lockLimit);
    if (!spies)
        return false;
    list.clear();
    for (auto const& [name, spy] : *spies)
        if (spy)
            list.emplace_back(spy.get());
    return true;
}

bool EventDetector::getSupportedSpies(rksl::StringMap<rktl::String>& spies) const
{
    spies = EventSpyFactory::getAllEventSpies();
    return true;
}

bool EventDetector::removeSpy(rktl::String const& name)
{
    auto const spies = mSpies.getWritePtr(lockLimit);
    return spies && erase(*spies, name);
}

bool EventDetector::renameSpy(rktl::String const& oldName, rktl::String const& newName)
{
    auto const spies = mSpies.getWritePtr(lockLimit);
    if (!spies || !has(*spies, oldName))
        return false;
    SpyPtr const spy = entry(*spies, oldName);
    if (spy)
        spy->setName(newName);
    erase(*spies, oldName);
    entry(*spies, newName) = spy;
    return true;
}

// ---- The stage ----

rktl::String EventDetector::getProcessType() const
{
    return "EventDetector";
}

ProcessParams EventDetector::getDefaultParameters() const
{
    return EventDetectorParams(defaultInterval);
}

void EventDetector::getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const
{
    auto const spies = mSpies.getReadPtr(lockLimit);
    if (!spies)
        return;
    for (auto const& [name, spy] : *spies) {
        if (!spy)
            continue;
        rksl::StringMap<rktl::Integer> wanted;
        spy->getRequiredImageTypes(wanted);
        for (auto const& [image, bits] : wanted) {
            if (image == "Native Image")
                types["Native-Scaled"] = bits;
            else
                types[image] = types[image] | bits;
        }
    }
}

void EventDetector::onFrameResize(unsigned int width, unsigned int height, double)
{
    if (width == 0 || height == 0)
        return;
    auto const spies = mSpies.getWritePtr(lockLimit);
    if (!spies)
        return;
    for (auto const& [name, spy] : *spies)
        if (spy)
            spy->reserveFrameSize(width, height);
}

void EventDetector::resetProcess()
{
    mNextProcess = rktl::ElapsedTime();
    auto const spies = mSpies.getWritePtr(lockLimit);
    if (!spies)
        return;
    mFrameEvents.clear();
    mFrameAttributes.clear();
    for (auto const& [name, spy] : *spies)
        if (spy)
            spy->reset();
}

bool EventDetector::onSetParameters(ProcessParams const& params)
{
    EventDetectorParams read(defaultInterval);
    if (!read.read(params))
        return false;
    auto const spies = mSpies.getWritePtr(lockLimit);
    if (!spies)
        return false;
    spies->clear();
    for (EventSpyFactory const& factory : read.getSpyFactories())
        if (auto const* const spy = dynamic_cast<FrameEventSpy const*>(factory.getSpy()))
            putSpy(*spies, *spy);
    mInterval = read.getProcessingInterval();
    mNextProcess = rktl::ElapsedTime();
    return true;
}

bool EventDetector::onProcessFrame(ProcessFrame& frame)
{
    auto const spies = mSpies.getWritePtr(lockLimit);
    if (!spies)
        return false;
    rktl::ElapsedTime const position = frame.getPosition();
    if (position < mLastPosition) // the stream has jumped back
        mNextProcess = position;
    mLastPosition = position;
    rksl::StringMap<rktl::String> status;
    for (auto const& [name, spy] : *spies) {
        if (!spy)
            continue;
        spy->getStatus(status);
        if (status.empty())
            continue;
        frame.addNamespaceValues(name, status, "");
        status.clear();
    }
    if (mNextProcess > position && !(frame.getFlags() & Frame::endOfClip)) {
        skipFrame(frame);
        return true;
    }
    auto const gathered = mEvents.getWritePtr(lockLimit);
    if (!gathered) {
        log(rktl::LogType::Error, rktl::String("onProcessFrame - Unable to lock event map."));
        return false;
    }
    mFrameEvents.clear();
    mFrameAttributes.clear();
    mNextProcess = position + mInterval;
    runSpies(*spies, *gathered, frame);
    gathered->clean(rktl::TimeStamp::systemTime(), nullptr);
    frame.setEvents(mFrameEvents);
    mPendingFlags = 0;
    return true;
}

void EventDetector::skipFrame(ProcessFrame& frame)
{
    mPendingFlags |= frame.getFlags() & Frame::carriedFlags;
    frame.setEvents(mFrameEvents);
    frame.updateAttributes(mFrameAttributes);
}

/// The spies see the flags of the frames that they were not shown.
void EventDetector::runSpies(Spies& spies, EventCache& gathered, ProcessFrame& frame)
{
    uint32_t const flags = frame.getFlags();
    frame.setFlags(flags | mPendingFlags);
    mView.show(frame);
    for (auto const& [name, spy] : spies) {
        if (!spy)
            continue;
        spy->spy(frame, mView);
        spy->getEvents(gathered);
    }
    mView.clear();
    frame.setFlags(flags);
}
