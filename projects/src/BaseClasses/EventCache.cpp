#include "BaseClasses/EventCache.h"

#include <algorithm>
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

EventCache::EventCache(EventCache const& other)
    : mMaxReviewedAge(other.mMaxReviewedAge)
    , mMaxAge(other.mMaxAge)
    , mFirstMaybeNew(other.mFirstMaybeNew)
    , mFirstEndUnknown(other.mFirstEndUnknown)
    , mFirstEnd(other.mFirstEnd)
{
    for (Slot const& slot : other.mSlots)
        mSlots.push_back({slot.uid, slot.isMaybeNew, slot.isEndUnknown, slot.end, std::make_unique<Event>(*slot.event)});
}

EventCache& EventCache::operator=(EventCache const& other)
{
    EventCache copy(other);
    mSlots.swap(copy.mSlots);
    mMaxReviewedAge = copy.mMaxReviewedAge;
    mMaxAge = copy.mMaxAge;
    mFirstMaybeNew = copy.mFirstMaybeNew;
    mFirstEndUnknown = copy.mFirstEndUnknown;
    mFirstEnd = copy.mFirstEnd;
    return *this;
}

void EventCache::setMaxTimes(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge)
{
    if (maxReviewedAge == mMaxReviewedAge && maxAge == mMaxAge)
        return;
    mMaxReviewedAge = maxReviewedAge;
    mMaxAge = maxAge;
    for (auto slot = mSlots.begin(); slot != mSlots.end(); ++slot)
        forgetEnd(slot);
}

// ---- Events ----

Event& EventCache::insert(Event&& event, bool& existed)
{
    auto const found = place(event.getUID());
    existed = found != mSlots.end() && found->uid == event.getUID();
    return existed ? touch(found) : put(found, std::move(event));
}

bool EventCache::exists(uint32_t uid) const
{
    return std::ranges::binary_search(mSlots, uid, {}, &Slot::uid);
}

Event* EventCache::getEvent(uint32_t uid)
{
    auto const found = find(uid);
    return found == mSlots.end() ? nullptr : &touch(found);
}

Event* EventCache::getFirstEvent()
{
    return mSlots.empty() ? nullptr : &touch(mSlots.begin());
}

/// Where the event is, or would be.
EventCache::Slots::iterator EventCache::place(uint32_t uid)
{
    return std::ranges::lower_bound(mSlots, uid, {}, &Slot::uid);
}

EventCache::Slots::iterator EventCache::find(uint32_t uid)
{
    auto const found = place(uid);
    return found != mSlots.end() && found->uid == uid ? found : mSlots.end();
}

Event& EventCache::put(Slots::iterator before, Event&& event)
{
    uint32_t const uid = event.getUID();
    auto stored = std::make_unique<Event>(std::move(event));
    return touch(mSlots.insert(before, {uid, false, false, 0, std::move(stored)}));
}

/// For whom it may change.
Event& EventCache::touch(Slots::iterator slot)
{
    slot->isMaybeNew = true;
    mFirstMaybeNew = std::min(mFirstMaybeNew, static_cast<size_t>(slot - mSlots.begin()));
    forgetEnd(slot);
    return *slot->event;
}

void EventCache::forgetEnd(Slots::iterator slot)
{
    slot->isEndUnknown = true;
    mFirstEndUnknown = std::min(mFirstEndUnknown, static_cast<size_t>(slot - mSlots.begin()));
}

template <class Put> void EventCache::report(Put put, bool clear)
{
    size_t const first = std::min(std::exchange(mFirstMaybeNew, SIZE_MAX), mSlots.size());
    for (auto slot = mSlots.begin() + static_cast<std::ptrdiff_t>(first); slot != mSlots.end(); ++slot) {
        if (!std::exchange(slot->isMaybeNew, false) || slot->event->getStatus() != Event::New)
            continue;
        if (clear) {
            put(slot->uid, std::move(*slot->event));
            continue;
        }
        put(slot->uid, Event(*slot->event));
        slot->event->setReviewed(true);
        forgetEnd(slot);
    }
    if (clear)
        this->clear();
}

void EventCache::getEvents(rksl::List<Event>& events, bool clear)
{
    report([&](uint32_t, Event&& event) { events.push_back(std::move(event)); }, clear);
}

void EventCache::getEvents(rktl::NodeMap<uint32_t, Event>& events, bool clear)
{
    report([&](uint32_t uid, Event&& event) { events[uid] = std::move(event); }, clear);
}

void EventCache::getEvents(EventCache& other)
{
    report([&](uint32_t, Event&& event) { other.update(std::move(event)); }, false);
}

void EventCache::update(rksl::List<Event> events)
{
    for (Event& event : events)
        update(std::move(event));
}

void EventCache::update(Event&& event)
{
    auto const found = place(event.getUID());
    if (found == mSlots.end() || found->uid != event.getUID()) {
        put(found, std::move(event));
        return;
    }
    Event& stored = touch(found);
    stored.updateData(event, true);
    stored.setReviewed(false);
}

void EventCache::clear()
{
    mSlots.clear();
    mFirstMaybeNew = mFirstEndUnknown = SIZE_MAX;
    mFirstEnd = INT64_MAX;
}

// ---- Ends ----

void EventCache::clean(rktl::TimeStamp const& now, std::set<uint32_t>* removed)
{
    int64_t const present = now.toElapsedTime().toMilliseconds();
    for (size_t i = std::exchange(mFirstEndUnknown, SIZE_MAX); i < mSlots.size(); ++i) {
        Slot& slot = mSlots[i];
        if (!std::exchange(slot.isEndUnknown, false))
            continue;
        slot.end = endOf(*slot.event);
        mFirstEnd = std::min(mFirstEnd, slot.end);
    }
    if (mFirstEnd >= present)
        return;
    mFirstEnd = INT64_MAX;
    std::erase_if(mSlots, [&](Slot const& slot) {
        bool const isOver = slot.end < present;
        if (!isOver)
            mFirstEnd = std::min(mFirstEnd, slot.end);
        else if (removed)
            removed->insert(slot.uid);
        return isOver;
    });
    mFirstMaybeNew = 0; // those behind have moved up
}

/// The last moment at which the event is kept.
int64_t EventCache::endOf(Event const& event) const
{
    rktl::TimeStamp const& updated = event.getUpdated();
    rktl::TimeStamp const end = updated + mMaxAge;
    bool const isReported = event.getStatus() > Event::New;
    return (isReported ? std::min(end, updated + mMaxReviewedAge) : end).toElapsedTime().toMilliseconds();
}
