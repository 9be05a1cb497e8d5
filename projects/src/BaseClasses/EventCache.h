#pragma once

#include "BaseClasses/Event.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_List.h"

#include <cstdint>
#include <map>
#include <set>

/// Events by their uids, each reported once for each change, and forgotten some time after its last update. Takes no locks;
/// references and pointers into it are good as long as whoever shares it holds its lock.
class EventCache {
public:
    EventCache();
    /// How long an event lives after its last update: once it has been reported, and when it never was.
    EventCache(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge);
    EventCache(EventCache const&) = default;
    EventCache& operator=(EventCache const&) = default;
    virtual ~EventCache() = default;

    void setMaxTimes(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge);

    /// Stores a copy unless the uid is taken (existed); gives the stored event.
    Event& insert(Event const& event, bool& existed);
    bool exists(uint32_t uid) const { return mEvents.count(uid) > 0; }
    /// Null when there is none.
    Event* getEvent(uint32_t uid);
    /// Of the lowest uid; null on an empty cache.
    Event* getFirstEvent();
    size_t size() const { return mEvents.size(); }

    /// Adds a copy of each new event, with its frames, and marks the stored one reviewed, which drops them here. clear: then
    /// empties the cache, reported events included.
    void getEvents(rksl::List<Event>& events, bool clear);
    void getEvents(rktl::NodeMap<uint32_t, Event>& events, bool clear);

    /// Adds unknown events, and extends known ones, which become new again.
    void update(rksl::List<Event> events);

    /// Forgets events whose age at now is over; their uids go into removed unless that is null.
    void clean(rktl::TimeStamp const& now, std::set<uint32_t>* removed);
    void clear() { mEvents.clear(); }

private:
    void touch()
    {
        mMayHaveNew = true;
        mOldestKnown = false;
    }
    bool mayBeOver(rktl::TimeStamp const& updated, rktl::TimeStamp const& now) const;
    bool isOver(Event const& event, rktl::TimeStamp const& now) const;
    template <class Take> void report(Take take, bool clear);

    rktl::NodeMap<uint32_t, Event> mEvents;
    rktl::ElapsedTime mMaxReviewedAge;
    rktl::ElapsedTime mMaxAge;
    // Most caches stay as they are for many frames, and need no look at each event then.
    bool mMayHaveNew = false;      // an event came, or was handed out to be changed, since the last report
    bool mOldestKnown = false;     // none came or was handed out since the last clean
    rktl::TimeStamp mOldestUpdate; // of all events, while known
};
