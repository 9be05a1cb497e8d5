#include <gtest/gtest.h>

#include "BaseClasses/EventCache.h"
#include "misc/rktl_url.h"
#include "support/moments.h"
#include "support/virtual_clock.h"

namespace {

Event event(uint32_t uid, int64_t updated = 0, Event::Status status = Event::New)
{
    Event made;
    made.setUID(uid);
    made.addFrame(Frame(), rktl::url(rktl::String("a:")), true);
    made.setUpdated(at(updated));
    made.setStatus(status);
    return made;
}

TEST(EventCache, KeepsTheFirstOfAUid)
{
    EventCache cache;
    bool existed = true;
    cache.insert(event(5), existed).setSubtitle("first");
    EXPECT_FALSE(existed);
    EXPECT_EQ("first", cache.insert(event(5), existed).getSubtitle());
    EXPECT_TRUE(existed);
    cache.insert(event(3), existed);
    EXPECT_EQ(3u, cache.getFirstEvent()->getUID());
}

TEST(EventCache, ReportsEachChangeOnceWithItsFrames)
{
    VirtualClock clock;
    EventCache cache;
    bool existed;
    cache.insert(event(5), existed);
    cache.insert(event(3), existed);
    cache.insert(event(4, 0, Event::Flagged), existed);
    rksl::List<Event> events;
    cache.getEvents(events, false);
    ASSERT_EQ(2u, events.size());
    EXPECT_EQ(3u, events.front().getUID());
    EXPECT_EQ(1u, events.front().getFrames().size());
    EXPECT_EQ(Event::Reviewed, cache.getEvent(3)->getStatus());
    EXPECT_TRUE(cache.getEvent(3)->getFrames().empty());
    cache.getEvents(events, false);
    EXPECT_EQ(2u, events.size());

    rksl::List<Event> changes;
    changes.push_back(event(3, 0, Event::Flagged));
    changes.push_back(event(9, 0, Event::Flagged));
    cache.update(changes);
    EXPECT_EQ(Event::Flagged, cache.getEvent(9)->getStatus()); // a new entry is as it comes
    rktl::NodeMap<uint32_t, Event> byUid;
    cache.getEvents(byUid, true);
    ASSERT_EQ(1u, byUid.size());
    EXPECT_EQ(1u, byUid.at(3).getFrames().size());
    EXPECT_EQ(0u, cache.size());
}

TEST(EventCache, ForgetsWhatIsOlderThanItsAgeAllows)
{
    struct {
        char const* why;
        Event::Status status;
        int64_t age; // ms
        bool gone;
    } const cases[] = {
        {"reported, at the limit", Event::Reviewed, 15000, false},
        {"reported, past it", Event::Reviewed, 15001, true},
        {"new, at the limit", Event::New, 300000, false},
        {"new, past it", Event::New, 300001, true},
    };
    for (auto const& c : cases) {
        EventCache cache;
        bool existed;
        cache.insert(event(1, 1000, c.status), existed);
        std::set<uint32_t> removed = {7};
        cache.clean(at(1000 + c.age), &removed);
        EXPECT_EQ(!c.gone, cache.exists(1)) << c.why;
        EXPECT_EQ(c.gone ? (std::set<uint32_t>{1, 7}) : std::set<uint32_t>{7}, removed) << c.why;
    }
    EventCache cache(rktl::ElapsedTime(900), rktl::ElapsedTime(10));
    bool existed;
    cache.insert(event(1, 1000, Event::Reviewed), existed);
    cache.setMaxTimes(rktl::ElapsedTime(900), rktl::ElapsedTime(INT64_MAX));
    cache.clean(at(1900), nullptr);
    EXPECT_TRUE(cache.exists(1));
    cache.setMaxTimes(rktl::ElapsedTime(900), rktl::ElapsedTime(10)); // the shorter one ends a reported event, too
    cache.clean(at(1011), nullptr);
    EXPECT_FALSE(cache.exists(1));
}

// A cache that was found in order is not looked through again, until an event may have changed.
TEST(EventCache, SeesWhatChangedThroughAPointerAfterItWasCleanedAndReported)
{
    EventCache cache(rktl::ElapsedTime(100), rktl::ElapsedTime(1000));
    bool existed;
    cache.insert(event(1, 1000, Event::New), existed);
    cache.insert(event(2, 1500, Event::New), existed);
    rksl::List<Event> events;
    cache.getEvents(events, false);
    cache.clean(at(1050), nullptr);
    cache.clean(at(1100), nullptr); // exactly the age of a reported event
    EXPECT_TRUE(cache.exists(1));

    cache.getEvent(2)->setUpdated(at(900));
    cache.clean(at(1100), nullptr);
    EXPECT_TRUE(cache.exists(1));
    EXPECT_FALSE(cache.exists(2)) << "its time of update has moved back";

    cache.getFirstEvent()->setReviewed(false);
    events.clear();
    cache.getEvents(events, false);
    EXPECT_EQ(1u, events.size()) << "new again";
    cache.clean(at(1101), nullptr);
    EXPECT_FALSE(cache.exists(1)) << "it grew old without being touched";
}

TEST(EventCache, ReportsWhatMovesUpWhenOlderEventsGo)
{
    EventCache cache(rktl::ElapsedTime(100), rktl::ElapsedTime(1000));
    bool existed;
    cache.insert(event(1, 0), existed);
    cache.insert(event(2, 1500), existed);
    EventCache copy = cache;
    copy.getEvent(2)->setStatus(Event::Flagged);
    cache.clean(at(1500), nullptr);
    EXPECT_FALSE(cache.exists(1));
    rksl::List<Event> events;
    cache.getEvents(events, false);
    EXPECT_EQ(1u, events.size());
    copy.getEvents(events, false);
    EXPECT_EQ(2u, events.size()) << "the copy still has its first event, and its second one is flagged";
}

TEST(EventCache, KeepsAnExtendedEventToItsNewEnd)
{
    EventCache cache(rktl::ElapsedTime(100), rktl::ElapsedTime(1000));
    bool existed;
    cache.insert(event(1, 1000, Event::Reviewed), existed);
    cache.clean(at(1050), nullptr);
    Event* const known = cache.getEvent(1);
    known->setReviewed(false);
    known->setUpdated(at(1090));
    cache.clean(at(1150), nullptr); // beyond its first end
    rksl::List<Event> events;
    cache.getEvents(events, false);
    EXPECT_EQ(1u, events.size());
    cache.clean(at(1190), nullptr);
    EXPECT_TRUE(cache.exists(1));
    cache.clean(at(1191), nullptr);
    EXPECT_FALSE(cache.exists(1)) << "reported, so it has 100 ms";
}

} // namespace
