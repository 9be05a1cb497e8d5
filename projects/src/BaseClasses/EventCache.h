#pragma once

#include "BaseClasses/Event.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_List.h"

#include <cstdint>
#include <map>
#include <set>
#include <vector>

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
    void clear();

private:
    static constexpr int64_t never = INT64_MAX;

    struct Entry {
        Entry(Event const& stored)
            : event(stored)
        {
        }
        Entry(Event&& stored)
            : event(std::move(stored))
        {
        }

        Event event;
        int64_t due = never;      // when it is to be looked at, by its last entry in mDue
        bool isMaybeNew = false;  // in mMaybeNew
        bool endsUnknown = false; // in mEndsUnknown
    };
    using Entries = rktl::NodeMap<uint32_t, Entry>;

    /// A time, ms since the epoch, and whose it is.
    using Due = std::pair<int64_t, uint32_t>;

    Event& touch(Entries::iterator place);
    void forgetEnd(uint32_t uid, Entry& entry);
    template <class Visit> void visitNew(Visit visit);
    template <class Put> void report(Put put, bool clear);
    int64_t endOf(Event const& event) const;
    void schedule(uint32_t uid, Entry& entry);
    void dropStale();

    Entries mEvents;
    rktl::ElapsedTime mMaxReviewedAge;
    rktl::ElapsedTime mMaxAge;
    // Most events stay as they are for many frames; only those that changed, or whose time has come, are looked at.
    std::vector<uint32_t> mMaybeNew;    // came, or were handed out to be changed, since the last report
    std::vector<uint32_t> mEndsUnknown; // the same, or were reported, since the last clean
    std::vector<Due> mDue;              // a heap, the earliest first; of an event whose end moved it has stale ones too
};
