#include <gtest/gtest.h>

#include "BaseClasses/Event.h"
#include "image/rkil_FlatImage.h"
#include "misc/rktl_url.h"
#include "support/bytes.h"
#include "support/moments.h"
#include "support/virtual_clock.h"

namespace {

using rktl::String;
using rktl::url;

url const door(String("meridane://box.localsite/door"));
url const gate(String("meridane://box.localsite/gate"));

Frame frameAt(int64_t milliseconds, url const& origin = door)
{
    Frame frame;
    frame.setTimePosition(at(milliseconds), rktl::ElapsedTime(milliseconds));
    frame.setOrigin(origin);
    return frame;
}

String timesOf(Event const& event)
{
    std::list<String> times;
    for (Frame const& frame : event.getFrames())
        times.push_back(String::fromInteger(static_cast<int>(frame.getPosition().toMilliseconds())));
    return String::join(times, " ");
}

Event eventWith(uint32_t uid, std::initializer_list<int64_t> times)
{
    Event event;
    event.setUID(uid);
    for (int64_t const time : times)
        event.addFrame(frameAt(time), door, true);
    return event;
}

TEST(Event, TheFirstFramesWin)
{
    Event event = eventWith(1, {10, 20, 30, 40});
    event.setStatus(Event::Flagged);
    event.addFrame(frameAt(50), door, true);
    EXPECT_EQ(Event::Flagged, event.getStatus());
    event.addFrame(frameAt(60), door, false);
    EXPECT_EQ("10 20 30 40 60", timesOf(event));
    EXPECT_EQ(Event::New, event.getStatus());
    event.addFrame(frameAt(70), door, true);
    event.addFrame(frameAt(80), door, false); // 6 frames: nothing makes room
    EXPECT_EQ("10 20 30 40 60 70 80", timesOf(event));
    event.setReviewed(true);
    EXPECT_EQ(Event::Reviewed, event.getStatus());
    EXPECT_TRUE(event.getFrames().empty());
}

TEST(Event, KeepsFramesWithoutPixelsButWithWholeTracks)
{
    Frame frame = frameAt(10, gate);
    rkil::FlatImage<1> image;
    image.resize(2, 2);
    frame.setImage("Native Image", image, 2);
    ObjectMap objects;
    objects[7] = Object();
    frame.setObjects(objects);
    Event event;
    event.addFrame(frame, door, false);
    Frame const& kept = event.getFrames().front();
    EXPECT_FALSE(kept.hasImage("Native Image"));
    EXPECT_TRUE(kept.getObject(7)->isFullTrack());
    EXPECT_FALSE(frame.getObject(7)->isFullTrack()); // the caller's frame stays as it is
}

TEST(Event, ListsObjectsByOrigin)
{
    Event event;
    EXPECT_FALSE(event.addObject(5, url()));
    EXPECT_FALSE(event.addObject(0, door));
    EXPECT_EQ("0", event.objectsString(door));
    EXPECT_FALSE(event.addObject(12, door));
    EXPECT_EQ("12", event.objectsString(door)); // id 0 goes
    EXPECT_TRUE(event.addObject(12, door));
    EXPECT_FALSE(event.addObject(3, door));
    EXPECT_EQ("3,12", event.objectsString(door)); // by number

    Event foreign; // ids below 0 come first, and a list in another order is put in order
    foreign.setObjects(std::vector<int32_t>{9, 3}, door);
    EXPECT_TRUE(foreign.addObject(3, door));
    EXPECT_EQ("9,3", foreign.objectsString(door));
    EXPECT_FALSE(foreign.addObject(5, door));
    EXPECT_FALSE(foreign.addObject(static_cast<uint32_t>(-7), door));
    EXPECT_FALSE(foreign.addObject(10, door));
    EXPECT_TRUE(foreign.addObject(static_cast<uint32_t>(-7), door));
    EXPECT_EQ("-7,3,5,9,10", foreign.objectsString(door));

    // A frame comes in only with a new id, and once.
    EXPECT_FALSE(event.addObject(3, frameAt(10), door));
    EXPECT_TRUE(event.addObject(10, frameAt(10), door));
    EXPECT_FALSE(event.addObject(11, frameAt(10), door));
    EXPECT_EQ("10", timesOf(event));
    EXPECT_EQ("3,10,11,12", event.objectsString(door));

    url const spy(String("meridane://other.site/door/spy"));
    event.addObject(77, spy);
    rksl::Set<rktl::Integer> ids;
    event.getCameraObjects(door, ids);
    EXPECT_EQ((rksl::Set<rktl::Integer>{3, 10, 11, 12, 77}), ids); // all components on a camera of that name
}

TEST(Event, ANewOriginMayTakeFramesAndIdsAlong)
{
    Event event;
    event.setOrigin(door, false);
    event.addObject(4, frameAt(10), door);
    event.setOrigin(gate, false);
    EXPECT_EQ("4", event.objectsString(door));
    event.setOrigin(door, true); // nothing is listed under gate, but the frames are renamed
    event.setOrigin(gate, true);
    EXPECT_EQ("4", event.objectsString(gate));
    EXPECT_EQ(String(gate), event.getFrames().front().getOrigin());

    url const own(String("meridane://box.localsite/*/spy"));
    event.setOrigin(own, false);
    event.addFrame(frameAt(20), door, false);
    rksl::Set<String> origins = {"old"};
    event.getComponentOrigins(origins, false);
    EXPECT_EQ((rksl::Set<String>{String(door), String(gate)}), origins);
}

TEST(Event, UpdateTakesWhatChangesAndRefusesAnotherEvent)
{
    VirtualClock clock(5000);
    Event event = eventWith(1, {10, 20, 30});
    event.setSubtitle("mine");
    event.setStart({at(1), rktl::ElapsedTime(1)});
    event.setAttribute("old", "1");
    Event other = eventWith(1, {40, 50, 60});
    other.setSubtitle("theirs");
    other.setStart({at(2), rktl::ElapsedTime(2)});
    other.setStop({at(3), rktl::ElapsedTime(3)});
    other.setType("count");
    other.setStatus(Event::Deleted);
    other.addObject(8, gate);
    other.setDescription("new");
    clock.advance(1000);
    event.updateData(other, true);
    EXPECT_EQ("10 20 30 40 50 60", timesOf(event));
    EXPECT_EQ(at(6000), event.getUpdated());
    EXPECT_EQ("mine", event.getSubtitle());
    EXPECT_EQ(at(1), event.getStart().first);
    EXPECT_EQ(3, event.getStop().second.toMilliseconds());
    EXPECT_EQ("count", event.getType());
    EXPECT_EQ(Event::Deleted, event.getStatus());
    EXPECT_EQ("8", event.objectsString(gate));
    EXPECT_EQ((rksl::StringMap<String>{{"description", "new"}}), event.getAttributes());
    event.updateData(other, false);
    EXPECT_EQ(6u, event.getFrames().size());
    EXPECT_EQ("Event::updateData()::Events do not match.", support::messageOf([&] { event.updateData(Event(), true); }));
}

TEST(Event, TellsWhereItsCamerasCanBeWatched)
{
    Event event;
    event.addFrame(frameAt(10), url(String("meridane://box.s/door?video-uri=rtsp://c/1?fps=5%26rk-home-preset=2")), false);
    event.addFrame(frameAt(20), gate, false);
    rksl::StringMap<String> uris;
    event.getVideoURIs(uris, false);
    EXPECT_EQ((rksl::StringMap<String>{{"door", "rtsp://c/1?fps=5"}}), uris);
    event.getVideoURIs(uris, true);
    EXPECT_EQ("rtsp://c/1?fps=5&rk-home-preset=2", uris["door"]);
}

TEST(Event, WireFormIsByteExactAndBounded)
{
    Event event({at(1002), rktl::ElapsedTime(3)}, {at(4005), rktl::ElapsedTime(6)}, "t", 0x0102, 0x55);
    event.setUpdated(at(7008));
    event.setSubtitle("s");
    event.setUID(0x0a0b0c0d);
    event.setStatus(Event::Flagged);
    event.setOrigin(url(String("a:")), false);
    support::Bytes const time = support::toBin(at(1002));
    support::Bytes const bytes = support::toBin(event);
    // Origin, five times, type and subtitle, no objects, numbers, an empty list of frames (type 3), no attributes.
    String const origin = event.getOrigin();
    size_t const times = 3 * time.size() + 16;
    ASSERT_EQ(origin.size() + 5 + times + 6 + 6 + 4 + 12 + 28 + 4, bytes.size());
    support::Bytes const tail = support::hex("01000000 74 00 01000000 73 00 00000000 02000000 0201 0d0c0b0a 5500"
                                             "18000000 f8010000 04000000 03000000 f8010000 04000000 00000000 00000000");
    EXPECT_EQ(tail, support::Bytes(bytes.end() - static_cast<ptrdiff_t>(tail.size()), bytes.end()));

    event.addObject(5, frameAt(10), door);
    event.setDescription("d");
    support::Bytes const whole = support::toBin(event);
    Event read = eventWith(3, {1});
    EXPECT_EQ(whole.size(), support::fromBin(read, whole));
    EXPECT_EQ(whole, support::toBin(read));
    support::expectEveryPrefixThrows<Event>(whole);
}

TEST(Event, XmlKeepsTheSpanButNeitherPositionsNorFrames)
{
    Event event = eventWith(7, {10});
    event.setStart({at(1000).toLocal(), rktl::ElapsedTime(3)});
    event.setStop({at(4250).toLocal(), rktl::ElapsedTime(6)});
    event.setType("a<b");
    event.setSubtitle("s");
    event.setPriority(2);
    event.setConfidence(40);
    event.setStatus(Event::Reviewed);
    event.setOrigin(door, false);
    url const odd(String("x://y?a=1&b=2"));
    event.addObjects({1, 2}, odd);
    event.setDescription("d");
    String const xml = event.toXML();
    EXPECT_EQ(0u, xml.find("<Event><type>a&lt;b</type><subtitle>s</subtitle><priority>2</priority><uid>7</uid><start"));
    EXPECT_NE(std::string::npos,
        xml.find("<objects origin=\"x://y?a=1&amp;b=2\">1,2</objects><status>reviewed</status>"
                 "<confidence>40</confidence><attributes "));
    Event read;
    read.addObject(3, gate); // goes
    ASSERT_TRUE(read.fromXML(xml.c_str()));
    EXPECT_EQ(xml, read.toXML());
    EXPECT_EQ(at(4250), read.getStop().first);
    EXPECT_EQ(-1, read.getStart().second.toMilliseconds());

    ASSERT_TRUE(
        read.fromXML("<E><status>odd</status><confidence>65541</confidence><priority>-2</priority><objects>1</objects></E>"));
    EXPECT_EQ(0, read.getPriority()); // not below 0
    EXPECT_EQ(Event::Reviewed, read.getStatus());
    EXPECT_EQ(5, read.getConfidence());                     // 65541 = 65536 + 5
    EXPECT_EQ(read.getStart().first, read.getStop().first); // no length
}

} // namespace
