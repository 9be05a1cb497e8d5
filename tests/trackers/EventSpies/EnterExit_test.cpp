#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/EnterExit.h"

namespace {

using Box = rkml::BoundingBox<int>;

/// Frames of 1000 x 1000 with a zone from (400, 400) to (600, 600); neither age nor distance is asked for.
struct DoorRun : SpyRun<EnterExit> {
    explicit DoorRun(EnterExit::Type type = EnterExit::both, EnterExit::Type zoneType = EnterExit::enter)
        : SpyRun("door", "", type, zoneType)
    {
        spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{400, 400, 200, 200})});
        spy.setMinAge(rktl::ElapsedTime());
    }

    char loseObject()
    {
        return see([&] { scene.frame.getObjects().clear(); });
    }

    /// The subtitle of the event of a passage: out of the zone, or into it and gone there.
    std::string wordFor(bool out)
    {
        along({out ? inside : outside, out ? outside : inside});
        if (!out)
            loseObject();
        return events.empty() ? "" : events.front().getSubtitle();
    }

    static inline Box const outside{100, 450, 100, 100}, inside{450, 450, 100, 100};
};

} // namespace

TEST(EnterExit, ComingOutLastsAndGoingInEndsTheTrack)
{
    Box const &in = DoorRun::inside, &out = DoorRun::outside;
    DoorRun leaver;
    EXPECT_EQ(".AA.A", leaver.along({in, out, out, in, out}));
    EXPECT_EQ('.', leaver.loseObject()) << "it has gone outside";

    DoorRun arriver;
    EXPECT_EQ("...", arriver.along({out, in, in}));
    EXPECT_EQ('A', arriver.loseObject());
    // The event is of the last frame in which the object stood in the zone.
    EXPECT_EQ(rktl::ElapsedTime(400), arriver.events.front().getStart().second);
    EXPECT_EQ(TrackedScene::timeAt(400), arriver.events.front().getFrames().front().getTimeStamp());
    EXPECT_EQ('.', arriver.loseObject());

    DoorRun passer;
    EXPECT_EQ("...", passer.along({out, in, out}));
    EXPECT_EQ('.', passer.loseObject()) << "through the zone and out again";

    // An object that is removed or in limbo has ended, though it is there; in any other state it has not.
    for (int32_t state = -1; state <= 5; ++state) {
        DoorRun run;
        run.along({out, in});
        EXPECT_EQ(state == 0 || state == 2 ? 'A' : '.', run.see([&] { run.scene.put(7, in).setState(state); })) << state;
    }
}

TEST(EnterExit, WordsOfThePassages)
{
    using E = EnterExit;
    struct {
        E::Type type, zoneType;
        char const *comingOut, *goingIn;
    } const cases[] = {
        {E::both, E::enter, "Exit", "Enter"},
        {E::exit, E::enter, "Exit", ""},
        {E::both, E::unknown, "Exit", "Enter"},
        {E::both, E::exit, "Enter", "Exit"},
        {E::exit, E::exit, "", "Exit"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(rktl::String(E::typeToString(c.type) + " " + E::typeToString(c.zoneType)).c_str());
        EXPECT_EQ(c.comingOut, DoorRun(c.type, c.zoneType).wordFor(true));
        EXPECT_EQ(c.goingIn, DoorRun(c.type, c.zoneType).wordFor(false));
    }
}

TEST(EnterExit, FormsKeepTheTypes)
{
    EnterExit spy("door", "", EnterExit::enter, EnterExit::exit);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><type>Enter</type><zone-type>Exit</zone-type></EnterExitSpy>", xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << rktl::Integer(1) << rktl::Integer(2);
    expectBinaryTail(spy, form);
}
