#include "BaseClasses/EventCache.h"

#include <algorithm>
#include <functional>
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
    if (maxReviewedAge == mMaxReviewedAge && maxAge == mMaxAge)
        return;
    mMaxReviewedAge = maxReviewedAge;
    mMaxAge = maxAge;
    for (auto& [uid, entry] : mEvents)
        forgetEnd(uid, entry);
}

Event& EventCache::insert(Event const& event, bool& existed)
{
    auto const [place, isNew] = mEvents.try_emplace(event.getUID(), event);
    existed = !isNew;
    return touch(place);
}

Event* EventCache::getEvent(uint32_t uid)
{
    auto const found = mEvents.find(uid);
    return found == mEvents.end() ? nullptr : &touch(found);
}

Event* EventCache::getFirstEvent()
{
    return mEvents.empty() ? nullptr : &touch(mEvents.begin());
}

/// For whom it may change.
Event& EventCache::touch(Entries::iterator place)
{
    auto& [uid, entry] = *place;
    if (!std::exchange(entry.isMaybeNew, true))
        mMaybeNew.push_back(uid);
    forgetEnd(uid, entry);
    return entry.event;
}

void EventCache::forgetEnd(uint32_t uid, Entry& entry)
{
    if (!std::exchange(entry.endsUnknown, true))
        mEndsUnknown.push_back(uid);
}

/// In the order of the uids.
template <class Visit> void EventCache::visitNew(Visit visit)
{
    std::sort(mMaybeNew.begin(), mMaybeNew.end());
    for (uint32_t const uid : mMaybeNew) {
        auto const found = mEvents.find(uid);
        if (found == mEvents.end() || !std::exchange(found->second.isMaybeNew, false))
            continue;
        if (found->second.event.getStatus() != Event::New)
            continue;
        visit(uid, found->second.event);
        forgetEnd(uid, found->second);
    }
    mMaybeNew.clear();
}

template <class Put> void EventCache::report(Put put, bool clear)
{
    if (clear) {
        visitNew([&](uint32_t uid, Event& event) { put(uid, std::move(event)); });
        this->clear();
        return;
    }
    visitNew([&](uint32_t uid, Event& event) {
        put(uid, Event(event));
        event.setReviewed(true);
    });
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
        auto const [place, isNew] = mEvents.try_emplace(event.getUID(), std::move(event)); // moves only what is new
        Event& stored = touch(place);
        if (isNew)
            continue;
        stored.updateData(event, true);
        stored.setReviewed(false);
    }
}

void EventCache::clear()
{
    mEvents.clear();
    mMaybeNew.clear();
    mEndsUnknown.clear();
    mDue.clear();
}

// ---- Ends ----

void EventCache::clean(rktl::TimeStamp const& now, std::set<uint32_t>* removed)
{
    for (uint32_t const uid : mEndsUnknown) {
        auto const found = mEvents.find(uid);
        if (found == mEvents.end() || !std::exchange(found->second.endsUnknown, false))
            continue;
        if (endOf(found->second.event) < found->second.due)
            schedule(uid, found->second);
    }
    mEndsUnknown.clear();
    int64_t const present = now.toElapsedTime().toMilliseconds();
    while (!mDue.empty() && mDue.front().first < present) {
        auto const [due, uid] = mDue.front();
        std::pop_heap(mDue.begin(), mDue.end(), std::greater());
        mDue.pop_back();
        auto const found = mEvents.find(uid);
        if (found == mEvents.end() || found->second.due != due)
            continue;
        if (endOf(found->second.event) >= present) { // it was extended
            schedule(uid, found->second);
            continue;
        }
        mEvents.erase(found);
        if (removed)
            removed->insert(uid);
    }
    dropStale();
}

/// Where nobody asks for reports, or events may grow old for long, what is of no use any more would pile up.
void EventCache::dropStale()
{
    size_t const most = 2 * mEvents.size() + 16;
    if (mMaybeNew.size() > most)
        std::erase_if(mMaybeNew, [this](uint32_t uid) { return !exists(uid); });
    if (mDue.size() <= most)
        return;
    mDue.clear();
    for (auto const& [uid, entry] : mEvents)
        if (entry.due != never)
            mDue.emplace_back(entry.due, uid);
    std::make_heap(mDue.begin(), mDue.end(), std::greater());
}

void EventCache::schedule(uint32_t uid, Entry& entry)
{
    entry.due = endOf(entry.event);
    mDue.emplace_back(entry.due, uid);
    std::push_heap(mDue.begin(), mDue.end(), std::greater());
}

/// The last moment at which the event is kept.
int64_t EventCache::endOf(Event const& event) const
{
    rktl::TimeStamp const& updated = event.getUpdated();
    rktl::TimeStamp const end = updated + mMaxAge;
    bool const isReported = event.getStatus() > Event::New;
    return (isReported ? std::min(end, updated + mMaxReviewedAge) : end).toElapsedTime().toMilliseconds();
}
