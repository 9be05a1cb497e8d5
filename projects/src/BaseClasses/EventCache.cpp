#include "BaseClasses/EventCache.h"

#include <utility>

EventCache::EventCache()
    : EventCache(rktl::ElapsedTime::fromSeconds(15), rktl::ElapsedTime::fromMinutes(5))
{
}

EventCache::EventCache(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge)
    : mMaxReviewedAge(maxReviewedAge)
    , mMaxAge(maxAge)
{
}

void EventCache::setMaxTimes(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge)
{
    mMaxReviewedAge = maxReviewedAge;
    mMaxAge = maxAge;
}

Event& EventCache::insert(Event const& event, bool& existed)
{
    auto const [place, isNew] = mEvents.try_emplace(event.getUID(), event);
    existed = !isNew;
    return place->second;
}

Event* EventCache::getEvent(uint32_t uid)
{
    auto const found = mEvents.find(uid);
    return found != mEvents.end() ? &found->second : nullptr;
}

Event* EventCache::getFirstEvent()
{
    return mEvents.empty() ? nullptr : &mEvents.begin()->second;
}

template <class Take> void EventCache::report(Take take, bool clear)
{
    for (auto& [uid, event] : mEvents)
        if (event.getStatus() == Event::New && clear) {
            take(uid, std::move(event));
        } else if (event.getStatus() == Event::New) {
            take(uid, Event(event));
            event.setReviewed(true);
        }
    if (clear)
        mEvents.clear();
}

void EventCache::getEvents(rksl::List<Event>& events, bool clear)
{
    report([&](uint32_t, Event&& event) { events.push_back(std::move(event)); }, clear);
}

void EventCache::getEvents(rktl::NodeMap<uint32_t, Event>& events, bool clear)
{
    report([&](uint32_t uid, Event&& event) { events[uid] = std::move(event); }, clear);
}

void EventCache::update(rksl::List<Event> events)
{
    for (Event& event : events) {
        auto const [stored, isNew] = mEvents.try_emplace(event.getUID(), std::move(event)); // moves only what is new
        if (isNew)
            continue;
        stored->second.updateData(event, true);
        stored->second.setReviewed(false);
    }
}

void EventCache::clean(rktl::TimeStamp const& now, std::set<uint32_t>* removed)
{
    std::erase_if(mEvents, [&](auto const& entry) {
        Event const& event = entry.second;
        bool const isOver =
            event.getUpdated() + mMaxAge < now || (event.getStatus() > Event::New && event.getUpdated() + mMaxReviewedAge < now);
        if (isOver && removed)
            removed->insert(entry.first);
        return isOver;
    });
}
