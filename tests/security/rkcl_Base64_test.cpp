#include <gtest/gtest.h>

#include "security/rkcl_Base64.h"

#include <cstring>
#include <random>
#include <vector>

using namespace rkcl;

TEST(Base64, VectorsOfTheStandard)
{
    struct {
        char const* plain;
        char const* encoded;
    } const cases[] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"}, {"\xFB\xEF\xFF", "++//"}};
    for (auto const& c : cases) {
        unsigned int const size = static_cast<unsigned int>(strlen(c.plain));
        EXPECT_EQ(c.encoded, base64::encode(c.plain, size));
        EXPECT_EQ(strlen(c.encoded), base64::encodeLength(size));
        std::vector<char> plain(base64::decodeSize(static_cast<unsigned int>(strlen(c.encoded))) + 1, '#');
        EXPECT_EQ(size, base64::decode(plain.data(), rktl::String(c.encoded)));
        EXPECT_EQ(std::string(c.plain) + "#", std::string(plain.data(), size) + plain.back());
    }
}

TEST(Base64, WhatIsNoBase64GivesNothing)
{
    char target[12];
    for (char const* text :
        {"Zg=", "Zg", "Z", "====", "Z===", "Zg==Zg==", "Zg=v", "=g==", "Zm9\n", "Zm9v\r\n==", "Zm-_", "\xFF\xFF\xFF\xFF"})
        EXPECT_EQ(0u, base64::decode(target, rktl::String(text))) << text;
    EXPECT_EQ(0u, base64::decodeSize(7));
    EXPECT_EQ(6u, base64::decodeSize(8));
}

// Blocks of exactly the promised sizes, so that the address sanitizer sees one byte too many.
TEST(Base64, AllBytesComeBackWithinTheirBounds)
{
    std::mt19937 random(4711);
    for (unsigned int size = 0; size < 70; ++size) {
        std::vector<unsigned char> bytes(size);
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random());
        std::vector<char> text(base64::encodeLength(size));
        ASSERT_EQ(text.size(), base64::encode(text.data(), bytes.data(), size));
        std::vector<unsigned char> back(base64::decodeSize(static_cast<unsigned int>(text.size())));
        unsigned int const decoded = base64::decode(back.data(), text.data(), static_cast<unsigned int>(text.size()));
        back.resize(decoded);
        EXPECT_EQ(bytes, back);
    }
}
