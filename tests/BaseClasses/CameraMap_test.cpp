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

TEST(CameraMap, ListsAndFiltersByTheExactStatus)
{
    CameraMap map = sample();
    CameraMap::StatusMap machines = {{"left", 1}};
    map.getMachines(machines, 0);
    EXPECT_EQ((CameraMap::StatusMap{{"m1", 18}, {"m2", 2}}), machines);
    map.getMachines(machines, 2);
    EXPECT_EQ((CameraMap::StatusMap{{"m2", 2}}), machines); // 18 has that bit but is not equal
    EXPECT_EQ((CameraMap::StatusMap{{"door", 18}, {"gate", 16}}), map.getCameras("m1", 0));

    std::string urls;
    CameraGroup const cameras = map.getCameras(0);
    for (MeridaneAddress const& address : cameras.getAddresses())
        urls += address.toURL() + " ";
    EXPECT_EQ("meridane://m1.localsite/door/ meridane://m1.localsite/gate/ meridane://m2.localsite/door/ ", urls);
    EXPECT_EQ(1u, map.getCameras(50).getAddresses().size());

    EXPECT_FALSE(map.addCamera("m3", "door", 1));

    EXPECT_TRUE(map.cameraRunning({"door", "spy", "m2"})); // enabled and online, 50 has both bits
    EXPECT_FALSE(map.cameraRunning({"gate", "", "m1"}));   // online alone
    EXPECT_FALSE(map.cameraRunning({"gate", "", "m2"}));
}

TEST(CameraMap, TravelsAsItsXml)
{
    CameraMap const map = sample();
    std::string const xml = sampleXml;
    ASSERT_EQ(xml, map.toXML());
    EXPECT_EQ("registered", CameraMap::statusToString(192)); // a word for each group, the first that holds
    EXPECT_EQ("deleted|offline", CameraMap::statusToString(4 | 32));
    EXPECT_EQ(1u | 2u | 64u, CameraMap::statusFromString("REGISTERED|what|Enabled||disabled"));
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

    EXPECT_THROW(support::fromBin(read, support::hex("00000000 00")), rktl::Exception);
}

} // namespace
