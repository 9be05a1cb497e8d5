#include <gtest/gtest.h>

#include "misc/rktl_UUID.h"
#include "support/bytes.h"

using rktl::UUID;

TEST(UUID, TextAndBytesAreInOneOrder)
{
    char const* const text = "00112233-4455-6677-8899-aabbccddeeff";
    UUID id;
    ASSERT_TRUE(id.fromString(text));
    rktl::Buffer const bytes = id.toBuffer();
    ASSERT_EQ(16u, bytes.size());
    for (unsigned int i = 0; i < 16; ++i)
        EXPECT_EQ(0x11 * i, bytes.data()[i]);
    EXPECT_EQ(text, id.toString());
    EXPECT_EQ("<id>00112233-4455-6677-8899-aabbccddeeff</id>", id.toXML("id"));

    unsigned char body[16];
    ASSERT_EQ(16u, id.toBin(body));
    EXPECT_EQ(bytes, rktl::Buffer(body, 16));
    support::expectEveryPrefixThrows<UUID>(support::toBin(id));

    UUID read;
    EXPECT_TRUE(read.fromXML("<id>00112233-4455-6677-8899-AABBCCDDEEFF</id>"));
    EXPECT_EQ(id, read);
}

TEST(UUID, BadTextIsRefusedAndChangesNothing)
{
    UUID const before(true, true);
    for (char const* text : {"", "00112233-4455-6677-8899-aabbccddeef", "00112233-4455-6677-8899-aabbccddeefg",
             "0011223344556677-8899aabbccddeeff0000", "00112233-4455-6677-8899aabb-ccddeeff",
             " 0112233-4455-6677-8899-aabbccddeeff", "+1112233-4455-6677-8899-aabbccddeeff", "-"}) {
        UUID id(before);
        EXPECT_FALSE(id.fromString(text)) << text;
        EXPECT_EQ(before, id) << text;
    }
}
