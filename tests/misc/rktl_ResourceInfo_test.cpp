#include <gtest/gtest.h>

#include "misc/rktl_ResourceInfo.h"
#include "support/bytes.h"

TEST(ResourceInfo, CarriesNameThenUrlThenAttributesAndReadsItsXml)
{
    rktl::ResourceInfo info;
    info.setFriendlyName("Gate");
    info.setURL("u");
    info.setAttribute("k", "v");
    support::Bytes const bytes = support::hex("04000000 47617465 00  01000000 75 00  01000000 01000000 6b 00 01000000 76 00");
    EXPECT_EQ(bytes, support::toBin(info));
    support::expectEveryPrefixThrows<rktl::ResourceInfo>(bytes);

    rktl::ResourceInfo read;
    ASSERT_TRUE(read.fromXML(info.toXML().c_str()));
    EXPECT_EQ(bytes, support::toBin(read));
    EXPECT_EQ(0u, info.toXML().find("<rktl_ResourceInfo><attributes "));
}
