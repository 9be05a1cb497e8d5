#include <gtest/gtest.h>

#include "misc/rktl_Buffer.h"
#include "misc/rktl_Exception.h"
#include "support/TempFolder.h"
#include "support/bytes.h"

#include <cstring>

using rktl::Buffer;

namespace {

Buffer bufferOf(std::string const& bytes)
{
    return Buffer(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
}

} // namespace

TEST(Buffer, GrowsAndKeepsItsBytes)
{
    Buffer buffer;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        unsigned char const byte = static_cast<unsigned char>(i);
        buffer.append(&byte, 1);
        expected += static_cast<char>(i);
    }
    EXPECT_EQ(expected, buffer.rawString());

    buffer.resize(3);
    EXPECT_EQ(std::string("\0\1\2", 3), buffer.rawString());
    buffer.resize(2, 7);
    EXPECT_EQ("\7\7", buffer.rawString());
    EXPECT_EQ(std::string(4, '\0'), Buffer(4).rawString());

    Buffer self = bufferOf("abc");
    for (int i = 0; i < 4; ++i)
        self.append(self.data(), self.size()); // from a block that growth moves
    EXPECT_EQ(48u, self.size());
    EXPECT_EQ("abcabc", self.rawString().substr(42));
    self.set(self.data() + 1, 4);
    EXPECT_EQ("bcab", self.rawString());
}

TEST(Buffer, ReservedRoomIsNotInUseUntilItIsSaidToBe)
{
    Buffer buffer = bufferOf("ab");
    std::memcpy(buffer.reserve(3, 2), "cde", 3);
    EXPECT_EQ("ab", buffer.rawString());
    EXPECT_GE(buffer.capacity(), 5u);
    buffer.resize(5);
    EXPECT_EQ("abcde", buffer.rawString());
    EXPECT_EQ(buffer.data() + 1, buffer.reserve(4, 1)); // there is room already
    EXPECT_THROW(buffer.reserve(0xFFFFFFFF, 1), rktl::Exception);
    EXPECT_EQ("abcde", buffer.rawString());
}

TEST(Buffer, EveryFormGivesTheBytesBack)
{
    Buffer const bytes = bufferOf(std::string("\0\xFF<", 3));
    EXPECT_EQ("AP88", bytes.toString());
    EXPECT_EQ("<b encoding=\"base64\">AP88</b>", bytes.toXML("b"));

    unsigned char body[7];
    ASSERT_EQ(7u, bytes.toBin(body));
    EXPECT_EQ(std::string("\3\0\0\0\0\xFF<", 7), std::string(reinterpret_cast<char*>(body), 7));
    support::expectEveryPrefixThrows<Buffer>(support::toBin(bytes));

    Buffer read = bufferOf("before");
    EXPECT_THROW(support::fromBin(read, support::hex("ffffffff 010203")), rktl::Exception); // nothing allocated
    EXPECT_TRUE(read.fromXML(bytes.toXML("b").c_str()));
    EXPECT_EQ(bytes, read);
    EXPECT_TRUE(read.fromString(""));
    EXPECT_TRUE(read.empty());
    EXPECT_FALSE(read.fromString("A"));
    EXPECT_FALSE(read.fromString("AP8!"));
    EXPECT_TRUE(read.empty());

    TempFolder const folder;
    std::string const path = folder / "bytes";
    ASSERT_TRUE(bytes.toFile(path.c_str()));
    EXPECT_EQ(3u, std::filesystem::file_size(path)); // no header
    ASSERT_TRUE(read.fromFile(path.c_str()));
    EXPECT_EQ(bytes, read);
}
