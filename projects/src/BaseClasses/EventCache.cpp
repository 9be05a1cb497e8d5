#include "BaseClasses/EventCache.h"

#include <algorithm>
#include <utility>

namespace {

rktl::ElapsedTime const ordinaryAge = rktl::ElapsedTime::fromDays(3650);

} // namespace

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
    touch();
    return place->second;
}

Event* EventCache::getEvent(uint32_t uid)
{
    auto const found = mEvents.find(uid);
    if (found == mEvents.end())
        return nullptr;
    touch();
    return &found->second;
}

Event* EventCache::getFirstEvent()
{
    if (mEvents.empty())
        return nullptr;
    touch();
    return &mEvents.begin()->second;
}

template <class Take> void EventCache::report(Take take, bool clear)
{
    if (clear)
        touch(); // what is left behind has been moved from
    if (!mMayHaveNew)
        return;
    for (auto& [uid, event] : mEvents)
        if (event.getStatus() == Event::New && clear) {
            take(uid, std::move(event));
        } else if (event.getStatus() == Event::New) {
            take(uid, Event(event));
            event.setReviewed(true);
        }
    mMayHaveNew = false;
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
    touch();
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
    if (mOldestKnown && !mayBeOver(mOldestUpdate, now))
        return;
    mOldestUpdate = now;
    std::erase_if(mEvents, [&](auto const& entry) {
        Event const& event = entry.second;
        if (mayBeOver(event.getUpdated(), now) && isOver(event, now)) {
            if (removed)
                removed->insert(entry.first);
            return true;
        }
        mOldestUpdate = std::min(mOldestUpdate, event.getUpdated());
        return false;
    });
    mOldestKnown = true;
}

/// Whether an event of that update may have reached an age at which it goes. Sums beyond the range of a time stamp are left to
/// isOver.
bool EventCache::mayBeOver(rktl::TimeStamp const& updated, rktl::TimeStamp const& now) const
{
    auto const isOrdinary = [](rktl::ElapsedTime const& age) { return age >= rktl::ElapsedTime() && age <= ordinaryAge; };
    return !isOrdinary(mMaxAge) || !isOrdinary(mMaxReviewedAge) || updated + std::min(mMaxAge, mMaxReviewedAge) < now;
}

bool EventCache::isOver(Event const& event, rktl::TimeStamp const& now) const
{
    return event.getUpdated() + mMaxAge < now || (event.getStatus() > Event::New && event.getUpdated() + mMaxReviewedAge < now);
}
