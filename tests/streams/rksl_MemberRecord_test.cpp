#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_MemberRecord.h"
#include "support/bytes.h"

using rktl::Integer;
using rktl::String;
using support::fromBin;
using support::hex;

namespace {

/// Wire order and name order differ.
struct Reading : rksl::MemberRecord {
    String unit = "C";
    Integer degrees = 21;
    bool silent = false; // degrees has no XML for the moment

    unsigned int getTypeId() const override { return 499; }
    String getTypeName() const override { return "Reading"; }
    char const* getClassName() const override { return "tests::Reading"; }
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& names) override
    {
        list = {&unit, &degrees};
        names = {{"unit", &unit}, {"degrees", silent ? nullptr : &degrees}};
    }
};

TEST(MemberRecord, MembersStandInWireOrder)
{
    Reading reading;
    EXPECT_EQ(hex("01000000 43 00 15000000"), support::toBin(reading));
    EXPECT_EQ(11u, fromBin(reading, hex("02000000 4141 00 ffffffff ee")));
    EXPECT_EQ("AA", reading.unit);
    EXPECT_EQ(-1, reading.degrees.value);
    support::expectEveryPrefixThrows<Reading>(hex("02000000 4141 00 ffffffff"));
}

TEST(MemberRecord, XmlStandsInNameOrder)
{
    Reading reading;
    EXPECT_EQ("<Reading><degrees>21</degrees><unit>C</unit></Reading>", reading.toXML());
    reading.silent = true;
    EXPECT_EQ("<r><unit>C</unit></r>", reading.toXML("r"));
    EXPECT_TRUE(reading.fromXML("<r><degrees>5</degrees><other><unit>K</unit></other></r>"));
    EXPECT_EQ(21, reading.degrees.value);
    EXPECT_EQ("C", reading.unit);
}

} // namespace
