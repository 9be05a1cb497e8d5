#include <gtest/gtest.h>

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_url.h"
#include "support/bytes.h"

namespace {

using rktl::String;
using rktl::url;

constexpr char const* guidText = "00112233-4455-6677-8899-aabbccddeeff";

rktl::UUID guid()
{
    rktl::UUID uuid;
    uuid.fromString(guidText);
    return uuid;
}

String fields(MeridaneAddress const& address)
{
    String text = address.getSite() + "," + address.getMachine() + "," + address.getCamera() + "," + address.getSpy();
    for (auto const& [level, uuid] : address.getGUIDs())
        text += "," + level + "=" + uuid.toString();
    return text;
}

TEST(MeridaneAddress, WhatAUrlNames)
{
    struct {
        char const* why;
        String text;
        char const* fields; // null: no address
    } const cases[] = {
        {"all levels", "meridane://box.home/door/dir", "home,box,door,dir"},
        {"any case of the scheme", "MERIDANE://box.home/door", "home,box,door,"},
        {"one token is the site", "meridane://home/door", "home,,door,"},
        {"dots of the machine's own", "meridane://a.b.c/door", "c,a.b,door,"},
        {"empty tokens", "meridane://.home//door\\dir/", "home,,door,dir"},
        {"a UUID alone", String("meridane:?camera-guid=") + guidText, "localsite,,,,camera=00112233-4455-6677-8899-aabbccddeeff"},
        {"a UUID that is none", "meridane:?camera-guid=12", nullptr},
        {"a level that is none", String("meridane:?-guid=") + guidText, nullptr},
        {"no host", "meridane:/door/dir", nullptr},
        {"three segments", "meridane://box.home/door/dir/more", nullptr},
        {"another scheme", "http://box.home/door", nullptr},
    };
    for (auto const& c : cases) {
        MeridaneAddress address("old", "old", "old");
        EXPECT_EQ(c.fields != nullptr, MeridaneAddress::parse(url(c.text), address)) << c.why;
        if (c.fields) {
            EXPECT_EQ(c.fields, fields(address)) << c.why;
        }
    }
}

TEST(MeridaneAddress, GivesTheUrlThatItReads)
{
    MeridaneAddress address("door", "dir", "box");
    EXPECT_EQ("meridane://box.localsite/door/dir", address.toURL());
    address.setGUID(MeridaneAddress::cameraLevel, guid());
    EXPECT_EQ(String("meridane://box.localsite/door/dir?camera-guid=") + guidText, address.toURL());
    EXPECT_EQ(fields(address), fields(MeridaneAddress(url(address.toURL()))));
    MeridaneAddress const odd("ca?m er%a", "s", "");
    EXPECT_EQ(fields(odd), fields(MeridaneAddress(url(odd.toURL()))));
}

TEST(MeridaneAddress, WhatIsValid)
{
    auto const levels = [](MeridaneAddress const& address) {
        String text = address.isValid() ? "+" : "-";
        for (int level = -1; level <= 5; ++level)
            text += address.isValid(level) ? '1' : '0';
        return text + String::fromInteger(address.getValidLevel());
    };
    // Levels -1 to 5: 4 and above always are.
    EXPECT_EQ("-01000110", levels(MeridaneAddress("", "", "")));
    EXPECT_EQ("-01100111", levels(MeridaneAddress("", "", "box")));
    EXPECT_EQ("-01000110", levels(MeridaneAddress("", "dir", ""))); // a spy needs its camera
    EXPECT_EQ("+01011113", levels(MeridaneAddress("door", "dir", "")));
    EXPECT_EQ("+01001113", levels(MeridaneAddress("*", "dir", "*"))); // any camera will do for a spy
    EXPECT_EQ("+01010112", levels(MeridaneAddress("door", "*", "")));
    MeridaneAddress spy(MeridaneAddress::cameraLevel, guid());
    spy.setSpy("dir");
    EXPECT_EQ("+01011113", levels(spy));
    spy.setGUID(MeridaneAddress::cameraLevel, rktl::UUID()); // removes
    EXPECT_EQ("-01000110", levels(spy));
}

TEST(MeridaneAddress, ComparesAsFarAsTheLevelSays)
{
    MeridaneAddress const a("door", "dir", "box");
    MeridaneAddress b("DOOR", "x", "box");
    EXPECT_FALSE(a.compare(b, MeridaneAddress::cameraLevel)); // byte by byte
    b.setCamera("door");
    EXPECT_TRUE(a.compare(b, MeridaneAddress::cameraLevel));
    b.setSite("other");
    EXPECT_FALSE(a.compare(b, MeridaneAddress::siteLevel));
    EXPECT_TRUE(a.compare(b, -1));
}

TEST(MeridaneAddress, WireOrderIsCameraMachineSiteSpyGuids)
{
    MeridaneAddress address("c", "p", "m");
    address.setSite("s");
    address.setGUID(MeridaneAddress::spyLevel, guid());
    support::Bytes const bytes = support::hex("01000000 63 00 01000000 6d 00 01000000 73 00 01000000 70 00"
                                              "01000000 03000000 737079 00 00112233445566778899aabbccddeeff");
    EXPECT_EQ(bytes, support::toBin(address));
    support::expectEveryPrefixThrows<MeridaneAddress>(bytes);

    MeridaneAddress read;
    support::fromBin(read, support::hex("01000000 63 00 00000000 00 00000000 00 00000000 00 00000000"));
    EXPECT_EQ("localsite,,c,", fields(read)); // an empty site
    EXPECT_TRUE(read.fromXML(address.toXML("CameraAddress").c_str()));
    EXPECT_EQ(fields(address), fields(read));
    EXPECT_TRUE(read.fromXML("<MeridaneAddress><camera-name>a&amp;b</camera-name><site-name/></MeridaneAddress>"));
    EXPECT_EQ("localsite,,a&b,", fields(read));
}

} // namespace
