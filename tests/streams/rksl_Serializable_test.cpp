#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "support/TempFolder.h"
#include "support/bytes.h"

using rktl::Integer;
using support::hex;

namespace {

struct Short : Integer {
    unsigned int getBinLength() const override { return 5; }
};

class SerializableFile : public testing::Test {
protected:
    TempFolder const folder;
    std::string const path = folder / "record.bin";
};

TEST_F(SerializableFile, HasSixBytesOfHeader)
{
    EXPECT_TRUE(Integer(-2).toFile(path.c_str()));
    EXPECT_EQ(hex("f801 04000000 feffffff"), support::readFile(path));
    Integer back;
    EXPECT_TRUE(back.fromFile(path.c_str()));
    EXPECT_EQ(-2, back.value);

    EXPECT_FALSE(Short().toFile(path.c_str())) << "wrote 4 bytes, said 5";
    EXPECT_FALSE(Integer().toFile(folder.path().c_str()));
}

TEST_F(SerializableFile, OfAnotherKindIsRefused)
{
    struct {
        char const* why;
        char const* bytes;
    } const cases[] = {
        {"another type", "f901 04000000 09000000"},
        {"a byte missing", "f801 04000000 090000"},
        {"a length of 4 GiB", "f801 ffffffff 09000000"},
    };
    for (auto const& c : cases) {
        support::writeFile(path, hex(c.bytes));
        Integer number(5);
        EXPECT_FALSE(number.fromFile(path.c_str())) << c.why;
        EXPECT_EQ(5, number.value) << c.why;
    }
    Integer number;
    support::writeFile(path, hex("f801 05000000 0900000000"));
    EXPECT_FALSE(number.fromFile(path.c_str())) << "fromBin leaves a byte";
    support::writeFile(path, hex("f801 03000000 090000"));
    EXPECT_FALSE(number.fromFile(path.c_str())) << "fromBin throws";
}

} // namespace
