#include <gtest/gtest.h>

#include "BaseClasses/CameraMap.h"
#include "support/bytes.h"

namespace {

CameraMap sample()
{
    CameraMap map;
    EXPECT_TRUE(map.addMachine("m2", 2));
    EXPECT_TRUE(map.addMachine("m1", 18));
    EXPECT_FALSE(map.addMachine("m1", 1)); // stays as it is
    EXPECT_TRUE(map.setMachineAttrs("m1", {{"os", "a<b"}, {"none", ""}}));
    EXPECT_TRUE(map.addCamera("m1", "door", 1));
    EXPECT_TRUE(map.addCamera("m1", "door", 18)); // has the new status
    EXPECT_TRUE(map.addCamera("m1", "gate", 16));
    EXPECT_TRUE(map.addCamera("m2", "door", 50));
    return map;
}

constexpr char const* sampleXml =
    "<CameraMap><machine status=\"enabled|online\">m1<machine-attributes name=\"os\" value=\"a&lt;b\"/>"
    "<camera status =\"enabled|online\">door</camera><camera status =\"online\">gate</camera></machine>"
    "<machine status=\"enabled\">m2<camera status =\"enabled|online\">door</camera></machine></CameraMap>";

TEST(CameraMap, StatusIsTwoWordsAtMostAndReadsAnyCase)
{
    struct {
        unsigned int status;
        char const* text;
    } const cases[] = {{0, ""}, {8, ""}, {3, "disabled"}, {18, "enabled|online"}, {4 | 32, "deleted|offline"},
        {192, "registered"}, {128, "unregistered"}, {0xff, "disabled|online"}};
    for (auto const& c : cases)
        EXPECT_EQ(c.text, CameraMap::statusToString(c.status));
    EXPECT_EQ(18u, CameraMap::statusFromString("enabled|online"));
    EXPECT_EQ(128u, CameraMap::statusFromString("unregistered"));
    EXPECT_EQ(1u | 2u | 64u, CameraMap::statusFromString("REGISTERED|what|Enabled||disabled"));
}

TEST(CameraMap, ListsAndFiltersByTheExactStatus)
{
    CameraMap map = sample();
    CameraMap::StatusMap machines = {{"left", 1}};
    map.getMachines(machines, 0);
    EXPECT_EQ((CameraMap::StatusMap{{"m1", 18}, {"m2", 2}}), machines);
    map.getMachines(machines, 2);
    EXPECT_EQ((CameraMap::StatusMap{{"m2", 2}}), machines); // 18 has that bit but is not equal
    EXPECT_EQ((CameraMap::StatusMap{{"door", 18}, {"gate", 16}}), map.getCameras("m1", 0));
    EXPECT_EQ((CameraMap::StatusMap{{"gate", 16}}), map.getCameras("m1", 16));
    EXPECT_TRUE(map.getCameras("m3", 0).empty());

    std::string urls;
    CameraGroup const cameras = map.getCameras(0);
    for (MeridaneAddress const& address : cameras.getAddresses())
        urls += address.toURL() + " ";
    EXPECT_EQ("meridane://m1.localsite/door/ meridane://m1.localsite/gate/ meridane://m2.localsite/door/ ", urls);
    EXPECT_EQ(1u, map.getCameras(50).getAddresses().size());

    EXPECT_TRUE(map.removeCamera("m1", "gate"));
    EXPECT_TRUE(map.removeCamera("m1", "gate")); // no failure
    EXPECT_EQ(1u, map.getCameras("m1", 0).size());
}

TEST(CameraMap, AnUnknownMachineIsRefused)
{
    CameraMap map = sample();
    rktl::Attributes attributes;
    EXPECT_TRUE(map.getMachineAttrs("m1", attributes));
    EXPECT_EQ((rksl::StringMap<rktl::String>{{"os", "a<b"}}), attributes.getAttributes());
    for (char const* name : {"m3", static_cast<char const*>(nullptr)}) {
        EXPECT_FALSE(map.addCamera(name, "door", 1));
        EXPECT_FALSE(map.removeCamera(name, "door"));
        EXPECT_FALSE(map.setMachineAttrs(name, {}));
        EXPECT_FALSE(map.getMachineAttrs(name, attributes));
    }
    EXPECT_EQ(sampleXml, map.toXML());
}

TEST(CameraMap, ACameraRunsWhenEnabledAndOnline)
{
    CameraMap const map = sample();
    EXPECT_TRUE(map.cameraRunning({"door", "", "m1"}));
    EXPECT_TRUE(map.cameraRunning({"door", "spy", "m2"})); // 50 has both bits
    EXPECT_FALSE(map.cameraRunning({"gate", "", "m1"}));   // 16 alone
    EXPECT_FALSE(map.cameraRunning({"gate", "", "m2"}));
    EXPECT_FALSE(map.cameraRunning({"door", "", ""}));
}

TEST(CameraMap, TravelsAsItsXml)
{
    CameraMap const map = sample();
    std::string const xml = sampleXml;
    ASSERT_EQ(xml, map.toXML());
    support::Bytes bytes = support::toBin(map);
    ASSERT_EQ(4 + xml.size() + 1, bytes.size());
    EXPECT_EQ(xml.size(), bytes[0] + 256u * bytes[1]);
    EXPECT_EQ(xml, std::string(bytes.begin() + 4, bytes.end() - 1));

    CameraMap read;
    read.addMachine("old", 0);
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    // The words say less than the bits: 50 comes back as 18.
    EXPECT_EQ((CameraMap::StatusMap{{"door", 18}}), read.getCameras("m2", 0));
    EXPECT_EQ(xml, read.toXML());
    support::expectEveryPrefixThrows<CameraMap>(bytes);

    EXPECT_FALSE(read.fromXML("<CameraMap><machine></CameraMap>"));
    EXPECT_EQ(xml, read.toXML());
    support::Bytes const empty = support::toBin(CameraMap());
    EXPECT_EQ(empty.size(), support::fromBin(read, empty));
    EXPECT_EQ("<CameraMap></CameraMap>", read.toXML());
    EXPECT_THROW(support::fromBin(read, support::hex("00000000 00")), rktl::Exception);
    EXPECT_EQ("", map.toXML(nullptr));
}

} // namespace
