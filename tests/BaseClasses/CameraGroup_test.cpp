#include <gtest/gtest.h>

#include "BaseClasses/CameraGroup.h"
#include "support/bytes.h"

namespace {

TEST(CameraGroup, HoldsEachCameraOnce)
{
    CameraGroup group;
    MeridaneAddress* const first = group.add({"door", "", "box"});
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, group.add({"door", "spy", "box"}));
    EXPECT_EQ(nullptr, group.add({"", "spy", "box"})); // names no camera
    group.add({"gate", "", "box"});
    EXPECT_EQ(2u, group.getAddresses().size());
    EXPECT_FALSE(group.exists({"gate", "", "elsewhere"}, MeridaneAddress::cameraLevel));
    CameraGroup turned;
    turned.add({"gate", "", "box"});
    turned.add({"door", "", "box"});
    EXPECT_FALSE(group.compare(turned, MeridaneAddress::cameraLevel)); // order counts
    EXPECT_TRUE(group.compare(turned, MeridaneAddress::machineLevel));

    EXPECT_TRUE(group.remove({"door", "spy", "box"}));
    EXPECT_FALSE(group.remove({"door", "spy", "box"}));
    EXPECT_EQ("gate", group.getAddresses().front().getCamera());
}

TEST(CameraGroup, HasTwoForms)
{
    CameraGroup group("a\"b");
    group.setSettings(-5);
    support::Bytes bytes(group.getBinLength());
    ASSERT_EQ(bytes.size(), group.toBin(bytes.data()));
    // An empty list of type 20, then the name, then the settings.
    EXPECT_EQ(support::hex("18000000 f8010000 04000000 14000000 f8010000 04000000 00000000 03000000 612262 00 fbffffff"), bytes);
    support::expectEveryPrefixThrows<CameraGroup>(bytes);

    EXPECT_EQ("<g name=\"a&quot;b\" settings=\"-5\"></g>", group.toXML("g"));
    group.add({"door", "", "box"});
    CameraGroup read("old");
    read.add({"old", "", ""});
    ASSERT_TRUE(read.fromXML(group.toXML().c_str()));
    EXPECT_TRUE(group.compare(read, MeridaneAddress::spyLevel));
    EXPECT_EQ(-5, read.getSettings());
}

} // namespace
