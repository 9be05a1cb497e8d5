#include <gtest/gtest.h>

#include "BaseClasses/ProcessParams.h"
#include "misc/rktl_Integer.h"
#include "streams/rksl_List.h"
#include "support/bytes.h"

namespace {

using rktl::String;

/// A stage's parameters with one field.
struct Limit : ProcessParams {
    rktl::Integer limit = 5;
    bool takesBinary = true;
    Limit()
        : ProcessParams("Limiter")
    {
    }
    rksl::MemIOStream binSerialize() const override
    {
        rksl::MemIOStream stream;
        stream.write(limit);
        return stream;
    }
    bool binUnserialize(rksl::MemIOStream const& stream) override
    {
        if (takesBinary)
            rksl::MemIOStream(stream).read(limit);
        return takesBinary;
    }
    String xmlSerialize() const override { return rktl::Integer(limit + 100).toXML("limit"); }
    bool xmlUnserialize(String const& xml) override { return limit.fromXML(xml.c_str()); }
};

TEST(ProcessParams, XmlNamesOnlyWhatDiffers)
{
    ProcessParams params("Stage");
    EXPECT_EQ("<Stage enabled=\"true\"/>", params.toXML());
    params.setEnabled(false);
    params.setName("a\"b");
    params.setMode("night");
    String const xml = "<Stage enabled=\"false\" name=\"a&quot;b\" mode=\"night\"/>";
    EXPECT_EQ(xml, params.toXML("any"));
    ProcessParams read;
    ASSERT_TRUE(read.fromXML(xml.c_str()));
    EXPECT_EQ(xml, read.toXML());

    ASSERT_TRUE(read.fromXML("<Other enabled=\"True\"><a>1</a><b c=\"2\"/></Other>"));
    EXPECT_FALSE(read.isEnabled());     // exactly "true"
    EXPECT_EQ("night", read.getMode()); // absent: as before
    read.setMode("");
    ProcessParams again; // fields of a stage that is not known survive
    ASSERT_TRUE(again.fromXML(read.toXML().c_str()));
    EXPECT_NE(std::string::npos, again.toXML().find("<a>1</a>"));
    EXPECT_EQ(read.toXML(), again.toXML());
}

TEST(ProcessParams, BinaryFieldsComeBeforeXml)
{
    Limit limit;
    support::Bytes const bytes = support::toBin(limit);
    // On, no mode, type and name, a stream of one framed number, the XML.
    EXPECT_EQ(support::hex("01 00000000 00 07000000 4c696d69746572 00 07000000 4c696d69746572 00"
                           "0c000000 f8010000 04000000 05000000"
                           "12000000 3c6c696d69743e3130353c2f6c696d69743e 00"),
        bytes);
    Limit read;
    read.limit = 0;
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    EXPECT_EQ(5, read.limit);
    read.takesBinary = false;
    support::fromBin(read, bytes);
    EXPECT_EQ(105, read.limit);
    support::expectEveryPrefixThrows<ProcessParams>(bytes);

    rksl::List<ProcessParams> list; // a copy as the base loses nothing
    list.push_back(limit);
    EXPECT_EQ(bytes, support::toBin(list.front()));
}

} // namespace
