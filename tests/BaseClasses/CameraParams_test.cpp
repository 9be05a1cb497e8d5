#include <gtest/gtest.h>

#include "BaseClasses/CameraParams.h"
#include "support/bytes.h"

#include <initializer_list>

namespace {

using rktl::String;

TEST(CameraParams, BothFormsBringEverythingBack)
{
    rktl::UUID guid;
    guid.fromString("00112233-4455-6677-8899-aabbccddeeff");
    CameraParams params("a&b", guid, rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1000)).toLocal());
    params.setPort(8);
    params.setGPUDevice(3);
    params.setScale(0.5);
    params.setVideoURL("v");
    params.setAttribute("k", "v");
    params.setLogDirectory("l");
    ProcessParams stage("Stage");
    stage.setEnabled(false);
    stage.setMode("x");
    rksl::List<ProcessParams> stages;
    stages.push_back(stage);
    params.setProcesses(stages);

    String const xml = params.toXML();
    EXPECT_EQ(0u, xml.find("<CameraParams name=\"a&amp;b\" port=\"8\" guid=\"00112233-4455-6677-8899-aabbccddeeff\"><revision"));
    size_t place = 0;
    for (char const* element :
        {"<revision", "<gpu-device>3<", "<VideoProcesses>", "<scale>0.5<", "<video-url>v<", "<attributes ", "<log-dir>l<"}) {
        EXPECT_LT(place, xml.find(element)) << element;
        place = xml.find(element);
    }
    CameraParams fromXml("old", {}, {});
    ASSERT_TRUE(fromXml.fromXML(xml.c_str()));
    EXPECT_EQ(xml, fromXml.toXML());

    support::Bytes const bytes = support::toBin(params);
    support::Bytes const head = support::hex("03000000 612662 00 08000000 00112233445566778899aabbccddeeff");
    EXPECT_EQ(head, support::Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(head.size())));
    CameraParams fromBin;
    EXPECT_EQ(bytes.size(), support::fromBin(fromBin, bytes));
    EXPECT_EQ(xml, fromBin.toXML());
    support::expectEveryPrefixThrows<CameraParams>(bytes);

    // What XML leaves out reads as the default; an element of other versions is skipped.
    EXPECT_EQ(std::string::npos, CameraParams().toXML().find("scale"));
    ASSERT_TRUE(fromXml.fromXML("<CameraParams name=\"x\"><enrollment>1</enrollment></CameraParams>"));
    EXPECT_EQ(CameraParams("x", {}, {}).toXML(), fromXml.toXML());
}

} // namespace
