#include <gtest/gtest.h>

#include "support/bytes.h"
#include "support/probe_spy.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/EventSpies/EventSpyFactory.h"
#include "trackers/EventSpies/FrameEventSpy.h"

namespace {

std::string const failed = "rksl::Serializable::fromBin() - Failed!";

} // namespace

TEST(EventSpyFactory, KnowsTypesByIdAndByNameInAnyCase)
{
    EXPECT_EQ(1004, EventSpyFactory::getSpyType("directionSPY"));
    EXPECT_EQ(0, EventSpyFactory::getSpyType("Direction"));
    std::unique_ptr<EventSpy> const plain(EventSpyFactory::newEventSpy(1004));
    EXPECT_EQ(Direction().toXML(), plain->toXML());
    for (unsigned short id : {0, 1002, 1003, 1020}) {
        EXPECT_EQ(nullptr, EventSpyFactory::newEventSpy(id)) << id;
        EXPECT_EQ(nullptr, EventSpyFactory(id).getSpy()) << id;
    }
    EventSpyFactory const factory("DirectionSpy");
    auto const* const spy = dynamic_cast<Direction const*>(factory.getSpy());
    ASSERT_NE(nullptr, spy);
    EXPECT_EQ(Direction("", "", 45, 100, rktl::ElapsedTime(2000), 15).toXML(), spy->toXML());
    EXPECT_EQ("1004 DirectionSpy Contraflow 15",
        rktl::String::fromFormat(
            "%u %s %s %u", spy->getTypeId(), spy->getTypeName().c_str(), spy->getFriendlyName().c_str(), spy->getFilterMask()));
    EXPECT_EQ(Direction().toXML("DirectionSpy"), EventSpyFactory::getAllEventSpies()["DirectionSpy"]);
}

TEST(EventSpyFactory, AnswersForEachType)
{
    struct {
        unsigned short id;
        char const* name;
        char const* friendlyName;
        unsigned int filterMask;
        char const* defaultKeys; // behind the base's; none without a default spy
    } const types[] = {
        {1005, "PerimeterSpy", "Perimeter Intrusion", 15,
            "<perimeter-regions><region><vertex x=\"0.25\" y=\"0.25\" /><vertex x=\"0.75\" y=\"0.25\" />"
            "<vertex x=\"0.75\" y=\"0.75\" /><vertex x=\"0.25\" y=\"0.75\" "
            "/></region></perimeter-regions><intrusion>0.5</intrusion>"},
        {1006, "IdleSpy", "Idle Object", 10, "<wait-time unit=\"second\">60</wait-time><movement>25</movement>"},
        {1008, "LineCrossingSpy", "Line Crossing", 15,
            "<first x=\"0.5\" y=\"0.25\" /><second x=\"0.5\" y=\"0.75\" /><cross-line>1</cross-line><direction>0</direction>"},
        {1009, "ActivitySpy", "Activity", 31, "<type>NewObject</type><max-activity>0</max-activity>"},
        {1011, "ObjectSpy", "Object Spy", 8, ""},
        {1012, "ObjectTakenSpy", "Object Taken", 0,
            "<sensitivity>0.5</sensitivity><region><vertex x=\"0.25\" y=\"0.25\" /><vertex x=\"0.75\" y=\"0.25\" />"
            "<vertex x=\"0.75\" y=\"0.75\" /><vertex x=\"0.25\" y=\"0.75\" /></region>"},
        {1014, "OpticalFlowSpy", "Optical Flow Spy", 0, ""},
        {1017, "EnterExitSpy", "Enter Exit", 15, "<type>Both</type><zone-type>Exit</zone-type>"},
        {1018, "CrowdDensitySpy", "Crowd Density", 0,
            "<max-density>0.35</max-density><wait-time unit=\"second\">10</wait-time><crowd-regions><region>"
            "<vertex x=\"0.25\" y=\"0.25\" /><vertex x=\"0.75\" y=\"0.25\" /><vertex x=\"0.75\" y=\"0.75\" />"
            "<vertex x=\"0.25\" y=\"0.75\" /></region></crowd-regions>"},
        {1019, "SpeedSpy", "Speed", 11,
            "<speed-limit>55</speed-limit><distance>100</distance><unit>english</unit><first-segment>"
            "<first x=\"0.25\" y=\"0.25\" /><second x=\"0.25\" y=\"0.75\" /></first-segment><second-segment>"
            "<first x=\"0.75\" y=\"0.25\" /><second x=\"0.75\" y=\"0.75\" /></second-segment>"},
        {1026, "ProfileSpy", "Profile Spy", 0,
            "<min-conf>0.5</min-conf><min-valid-time unit=\"millisecond\">1000</min-valid-time>"
            "<max-invalid-time unit=\"millisecond\">1</max-invalid-time><non-contiguous/>"},
    };
    for (auto const& type : types) {
        SCOPED_TRACE(type.name);
        EXPECT_EQ(type.id, EventSpyFactory::getSpyType(type.name));
        std::unique_ptr<EventSpy> const plain(EventSpyFactory::newEventSpy(type.id));
        auto const* const spy = dynamic_cast<FrameEventSpy const*>(plain.get());
        ASSERT_NE(nullptr, spy);
        EXPECT_EQ(type.id, spy->getTypeId());
        EXPECT_EQ(type.name, spy->getTypeName());
        EXPECT_EQ(type.friendlyName, spy->getFriendlyName());
        EXPECT_EQ(type.filterMask, spy->getFilterMask());
        EXPECT_EQ(spy->toXML(), EventSpyFactory::getAllEventSpies()[type.name]);

        std::unique_ptr<EventSpy> const preset(EventSpyFactory::defaultEventSpy(type.id));
        std::string const xml = preset ? preset->toXML() : "</EventSpy></" + std::string(type.name) + ">";
        EXPECT_EQ("</EventSpy>" + std::string(type.defaultKeys) + "</" + type.name + ">", xml.substr(xml.find("</EventSpy>")));
    }
    auto const& doorway = dynamic_cast<FrameEventSpy const&>(*EventSpyFactory("EnterExitSpy").getSpy());
    EXPECT_EQ(rkml::Polygon2D<float>(rkml::BoundingBox<float>(0.25f, 0.25f, 0.5f, 0.5f)), doorway.getZones().front());
    EXPECT_EQ(1008, EventSpyFactory::getSpyType("tripwireSPY"));
    EXPECT_EQ(100u, dynamic_cast<FrameEventSpy const&>(*EventSpyFactory("TripwireSpy").getSpy()).getMinDistance());
}

TEST(EventSpyFactory, TypesThatAreSpecial)
{
    EXPECT_EQ(1022, EventSpyFactory::getSpyType("ExternalEventSpy"));
    std::unique_ptr<EventSpy> const external(EventSpyFactory::newEventSpy(1022));
    ASSERT_NE(nullptr, external);
    EXPECT_EQ("External Input", external->getFriendlyName());
    EXPECT_EQ(nullptr, EventSpyFactory::defaultEventSpy(1022));
    EXPECT_EQ(12u, EventSpyFactory::getAllEventSpies().size()) << "all thirteen but the one that sees no frames";
    EXPECT_EQ(50u, dynamic_cast<FrameEventSpy const&>(*EventSpyFactory("ActivitySpy").getSpy()).getMinDistance());

    rktl::String const capacity = EventSpyFactory("CapacityActivitySpy").toXML();
    EXPECT_EQ("<min-distance>50</min-distance><alarm-blobs>true</alarm-blobs></EventSpy><type>Threshold</type>"
              "<max-activity>1</max-activity></ActivitySpy>",
        capacity.substr(capacity.find("<min-distance>")));
    EXPECT_EQ(nullptr, EventSpyFactory("capacityactivityspy").getSpy()) << "in that case only";
}

TEST(EventSpyFactory, CopyHoldsASpyOfItsOwn)
{
    EventSpyFactory first("DirectionSpy");
    EventSpyFactory second(first), third;
    third = first;
    first.getSpy()->setName("changed");
    EXPECT_EQ("", second.getSpy()->getName() + third.getSpy()->getName());
    third = EventSpyFactory();
    EXPECT_EQ(nullptr, third.getSpy());
}

TEST(EventSpyFactory, XmlOfAnUnknownTypeLeavesNoSpyAndNoXmlLeavesTheOldOne)
{
    Direction const spy("name", "", 90, 50, rktl::ElapsedTime(3000), 20);
    EventSpyFactory factory(&spy);
    EXPECT_EQ(spy.toXML(), factory.toXML("ignored"));
    EXPECT_EQ("", EventSpyFactory().toXML() + EventSpyFactory().toXML("x"));

    EXPECT_FALSE(factory.fromXML("no xml"));
    EXPECT_NE(nullptr, factory.getSpy());
    EXPECT_TRUE(factory.fromXML(("<?xml version=\"1.0\"?>" + spy.toXML("DIRECTIONspy")).c_str()));
    EXPECT_EQ(spy.toXML(), factory.toXML());
    EXPECT_FALSE(factory.fromXML("<DirectionSpy/>"));
    EXPECT_EQ(nullptr, factory.getSpy());
    factory = EventSpyFactory(&spy);
    EXPECT_FALSE(factory.fromXML("<UnknownSpy><angle>1</angle></UnknownSpy>"));
    EXPECT_EQ(nullptr, factory.getSpy());
}

TEST(EventSpyFactory, BinaryIsTheTypeAndTheSpy)
{
    Direction const spy("name", "", 90, 50, rktl::ElapsedTime(3000), 20);
    support::Bytes const bytes = support::toBin(EventSpyFactory(&spy));
    EventSpyFactory read("DirectionSpy");
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    EXPECT_EQ(spy.toXML(), read.toXML());
    support::expectEveryPrefixThrows<EventSpyFactory>(bytes);

    rksl::MemIOStream stream;
    stream << rktl::Integer(1004) << spy;
    EXPECT_EQ(support::toBin(stream), bytes);
    for (int32_t unknown : {0, 1014 + 65536, -1, 65536 + 1004}) {
        rksl::MemIOStream other;
        other << rktl::Integer(unknown) << spy;
        EXPECT_EQ(failed, support::thrownBy([&] { support::fromBin(read, support::toBin(other)); })) << unknown;
        EXPECT_EQ(nullptr, read.getSpy());
    }

    EXPECT_EQ(0u, EventSpyFactory().getBinLength());
    unsigned char none[4];
    EXPECT_EQ(failed, support::thrownBy([&] { EventSpyFactory().toBin(none); }));
}
