#include <gtest/gtest.h>

#include "support/bytes.h"
#include "support/probe_spy.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/EventSpies/EventSpyFactory.h"
#include "trackers/EventSpies/FrameEventSpy.h"

namespace {

std::string const failed = "rksl::Serializable::fromBin() - Failed!";

} // namespace

TEST(EventSpyFactory, MakesTheTypesOfItsIds)
{
    std::pair<unsigned short, char const*> const types[] = {{1004, "DirectionSpy"}, {1005, "PerimeterSpy"}, {1006, "IdleSpy"},
        {1008, "LineCrossingSpy"}, {1009, "ActivitySpy"}, {1011, "ObjectSpy"}, {1012, "ObjectTakenSpy"}, {1014, "OpticalFlowSpy"},
        {1017, "EnterExitSpy"}, {1018, "CrowdDensitySpy"}, {1019, "SpeedSpy"}, {1022, "ExternalEventSpy"}, {1026, "ProfileSpy"}};
    for (auto const& [id, name] : types) {
        std::unique_ptr<EventSpy> const spy(EventSpyFactory::newEventSpy(id));
        ASSERT_NE(nullptr, spy) << name;
        EXPECT_EQ(name, spy->getTypeName());
        EXPECT_EQ(id, EventSpyFactory::getSpyType(name));
    }
    for (unsigned short id : {0, 1002, 1003, 1020})
        EXPECT_EQ(nullptr, EventSpyFactory::newEventSpy(id)) << id;
    EXPECT_EQ(0, EventSpyFactory::getSpyType("Direction"));
    EXPECT_EQ(1008, EventSpyFactory::getSpyType("tripwireSPY"));
    rktl::String const capacity = EventSpyFactory("CapacityActivitySpy").toXML();
    EXPECT_EQ("<min-distance>50</min-distance><alarm-blobs>true</alarm-blobs></EventSpy><type>Threshold</type>"
              "<max-activity>1</max-activity></ActivitySpy>",
        capacity.substr(capacity.find("<min-distance>")));
    EXPECT_EQ(nullptr, EventSpyFactory("capacityactivityspy").getSpy()) << "in that case only";
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
