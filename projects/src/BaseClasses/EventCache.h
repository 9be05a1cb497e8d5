#pragma once

#include "BaseClasses/Event.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_List.h"

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

/// Events by their uids, each reported once for each change, and forgotten some time after its last update. Takes no locks;
/// references and pointers into it are good as long as whoever shares it holds its lock.
class EventCache {
public:
    EventCache();
    /// How long an event lives after its last update: once it has been reported, and when it never was.
    EventCache(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge);
    EventCache(EventCache const& other);
    EventCache& operator=(EventCache const& other);
    virtual ~EventCache() = default;

    void setMaxTimes(rktl::ElapsedTime const& maxReviewedAge, rktl::ElapsedTime const& maxAge);

    /// Stores the event unless the uid is taken (existed), which leaves it as it is; gives the stored event.
    Event& insert(Event&& event, bool& existed);
    Event& insert(Event const& event, bool& existed) { return insert(Event(event), existed); }
    bool exists(uint32_t uid) const;
    /// Null when there is none.
    Event* getEvent(uint32_t uid);
    /// Of the lowest uid; null on an empty cache.
    Event* getFirstEvent();
    size_t size() const { return mSlots.size(); }

    /// Adds a copy of each new event, with its frames, and marks the stored one reviewed, which drops them here. clear: then
    /// empties the cache, reported events included.
    void getEvents(rksl::List<Event>& events, bool clear);
    void getEvents(rktl::NodeMap<uint32_t, Event>& events, bool clear);

    /// Hands copies of the new events to update of another cache; those here stay, reviewed.
    void getEvents(EventCache& other);

    /// Adds unknown events, and extends known ones, which become new again.
    void update(rksl::List<Event> events);
    void update(Event&& event);

    /// Forgets events whose age at now is over; their uids go into removed unless that is null.
    void clean(rktl::TimeStamp const& now, std::set<uint32_t>* removed);
    void clear();

private:
    /// An event, and what of it has to be looked at in each frame, side by side with that of the others.
    struct Slot {
        uint32_t uid;
        bool isMaybeNew;   // it came, or was handed out to be changed, since the last report
        bool isEndUnknown; // the same, or it was reported, since the last clean
        int64_t end;       // ms since the epoch: the last moment at which it is kept
        std::unique_ptr<Event> event;
    };
    using Slots = std::vector<Slot>;

    Slots::iterator place(uint32_t uid);
    Slots::iterator find(uint32_t uid);
    Event& put(Slots::iterator before, Event&& event);
    Event& touch(Slots::iterator slot);
    void forgetEnd(Slots::iterator slot);
    template <class Put> void report(Put put, bool clear);
    int64_t endOf(Event const& event) const;

    Slots mSlots; // ascending by uid
    rktl::ElapsedTime mMaxReviewedAge;
    rktl::ElapsedTime mMaxAge;
    // No slot before these is marked so: most caches stay as they are for many frames, and in others the latest events change.
    size_t mFirstMaybeNew = SIZE_MAX;
    size_t mFirstEndUnknown = SIZE_MAX;
    int64_t mFirstEnd = INT64_MAX; // none of the ends that are known comes before it
};
