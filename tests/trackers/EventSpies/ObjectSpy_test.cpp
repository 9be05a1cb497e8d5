#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/ObjectSpy.h"
#include "trackers/EventSpies/ProfileSpy.h"

namespace {

/// Object 7, seen every 200 ms: 5 frames to be valid (800 ms later), gone after 2 (400 ms).
struct ObjectRun : SpyRun<ObjectSpy> {
    ObjectRun()
        : SpyRun("who", "seen", 0.5f, rktl::ElapsedTime(800), rktl::ElapsedTime(400))
    {
        spy.setClasses({rktl::String("car")});
    }

    /// One frame for each digit: the confidence in tenths; '-': the object is not of the class, ' ': there is no object.
    std::string confidences(std::string const& digits)
    {
        std::string alarms;
        for (char const digit : digits)
            alarms += see([&] {
                scene.frame.getObjects().clear();
                if (digit == ' ')
                    return;
                Object& object = scene.put(7, {0, 0, 9, 9});
                if (digit != '-')
                    object.addClass("car");
                object.setClassConfidence("car", (digit - '0') / 10.0);
            });
        return alarms;
    }
};

/// Opens what spies inherit.
template <class Spy> struct Open : Spy {
    using Spy::computeConfidence;
    using Spy::Spy;
};

} // namespace

TEST(ObjectSpy, RaisesItsEventWhenTheObjectHasGone)
{
    ObjectRun run;
    EXPECT_EQ("........A", run.confidences("5675955  "));
    Event const& event = run.events.front();
    EXPECT_EQ(0, event.getStart().second.toMilliseconds());
    EXPECT_EQ(1200, event.getStop().second.toMilliseconds());
    EXPECT_EQ(90, event.getConfidence());
    EXPECT_EQ("7", event.getAttribute("valid-frames"));
    EXPECT_EQ("7", event.objectsString(rktl::url(event.getOrigin())));
    ASSERT_EQ(1u, event.getFrames().size());
    EXPECT_EQ(800, event.getFrames().front().getPosition().toMilliseconds()) << "the frame of the highest confidence";
}

TEST(ObjectSpy, ConfidenceMustLast)
{
    struct {
        char const* why;
        char const* confidences;
        char const* plain;
        char const* nonContiguous;
    } const cases[] = {
        {"seen for just long enough", "55555  ", "......A", "......A"},
        {"a frame too short", "5555   ", ".......", "......."},
        {"below the limit before it was valid", "55545  ", ".......", "......A"},
        {"of no class in between", "555-5  ", ".......", "......A"},
        {"below the limit once it is valid, then seen again", "5555545  ", "........A", "........A"},
        {"low for good: it ends though it is there", "555554444", "......A..", "......A.."},
        {"in every other frame", "54545454  ", "..........", "........A."},
    };
    for (auto const& c : cases)
        for (bool nonContiguous : {false, true}) {
            ObjectRun run;
            run.spy.setNonContiguous(nonContiguous);
            EXPECT_EQ(nonContiguous ? c.nonContiguous : c.plain, run.confidences(c.confidences)) << c.why << nonContiguous;
        }
}

TEST(ObjectSpy, EndOfTheClipClosesAllAtOnce)
{
    for (bool instant : {false, true}) {
        ObjectRun run;
        if (instant) // valid from its first frame on
            run.spy = ObjectSpy("", "", 0.5f, rktl::ElapsedTime(), rktl::ElapsedTime(400));
        EXPECT_EQ(instant ? "." : ".....", run.confidences(instant ? "5" : "55555"));
        EXPECT_EQ('A', run.see([&] { run.scene.frame.setFlags(Frame::endOfClip); }));
        EXPECT_EQ(0u, run.spy.countActive());
    }
}

TEST(ObjectSpy, Forms)
{
    ObjectSpy spy("o", "", 0.25f, rktl::ElapsedTime(1500), rktl::ElapsedTime(60000 * 2));
    spy.setNonContiguous(true);
    spy.setTrackNascent(true);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><min-conf>0.25</min-conf><min-valid-time unit=\"millisecond\">1500</min-valid-time>"
              "<max-invalid-time unit=\"minute\">2</max-invalid-time><non-contiguous/><track-nascent/></ObjectSpy>",
        xml.substr(xml.find("</EventSpy>")));
    expectBothFormsSurvive(spy);
    rksl::MemIOStream tail;
    tail << rktl::Integer(1) << rktl::Integer(1) << rktl::Double(0.25) << rktl::ElapsedTime(1500) << rktl::ElapsedTime(120000);
    expectBinaryTail(spy, tail);
}

TEST(ProfileSpy, TakesTheSurestRecognition)
{
    Open<ProfileSpy> spy;
    Object object;
    rktl::String recognition = "as it was";
    EXPECT_EQ(0.0f, spy.computeConfidence(object, recognition)) << "nothing recognised";
    rksl::StringMap<rktl::String> face, plate, silent;
    face["Recognition Conf"] = "0.75";
    face["Recognition"] = "guid-a";
    plate["Recognition Conf"] = "0.5";
    plate["Recognition"] = "guid-b";
    silent["Recognition"] = "guid-c";
    object.addNamespaceValues("Face", face, "Recognition Types");
    object.addNamespaceValues("Plate", plate, "Recognition Types");
    object.addNamespaceValues("Gait", silent, "Recognition Types");
    EXPECT_EQ(0.75f, spy.computeConfidence(object, recognition));
    EXPECT_EQ("guid-a", recognition);
    object.setAttribute("Plate:Recognition Conf", "1e300");
    EXPECT_EQ(std::numeric_limits<float>::max(), spy.computeConfidence(object, recognition));
    EXPECT_EQ("guid-b", recognition);
}
