#include <gtest/gtest.h>

#include "BaseClasses/CameraParams.h"
#include "support/bytes.h"

#include <initializer_list>

namespace {

using rktl::String;

/// "name/mode", with a "-" in front for a disabled stage.
ProcessParams stage(String text)
{
    ProcessParams params("Stage");
    if (text.front() == '-')
        params.setEnabled(false);
    text.erase(0, text.front() == '-');
    size_t const slash = text.find('/');
    params.setName(text.substr(0, slash));
    params.setMode(text.substr(slash + 1));
    return params;
}

rksl::List<ProcessParams> stages(String const& text)
{
    rksl::List<ProcessParams> list;
    for (String const& word : text.tokenize(" "))
        list.push_back(stage(word));
    return list;
}

CameraParams with(String const& text)
{
    CameraParams params;
    params.setProcesses(stages(text));
    return params;
}

String listed(CameraParams const& params)
{
    std::list<String> words;
    for (ProcessParams const& process : params.getProcesses())
        words.push_back((process.isEnabled() ? "" : "-") + process.getName() + "/" + process.getMode());
    return String::join(words, " ");
}

TEST(CameraParams, ChangesTheListOfStages)
{
    using Change = void (*)(CameraParams&);
    struct {
        char const* before;
        Change change;
        char const* after;
    } const cases[] = {
        {"a/ b/ b/x", [](CameraParams& p) { p.addProcess(stage("c/"), "b"); }, "a/ c/ b/ b/x"},
        {"a/ b/", [](CameraParams& p) { p.addProcess(stage("c/"), ""); }, "a/ b/ c/"},
        {"a/ a/x a/y b/x", [](CameraParams& p) { p.removeProcess("a", "x"); }, "a/ a/y b/x"},
        {"a/ a/x a/y b/x", [](CameraParams& p) { p.removeProcess("a", ""); }, "b/x"},
        {"b/ a/x c/ a/y a/", [](CameraParams& p) { p.updateProcess(stage("-a/y")); }, "b/ a/x c/ -a/y"},
        {"b/ a/x c/ a/y", [](CameraParams& p) { p.updateProcess(stage("-a/")); }, "b/ -a/ c/"},
        {"b/ a/x", [](CameraParams& p) { p.updateProcess(stage("-a/y")); }, "b/ a/x -a/y"},
        {"a/ b/x c/", [](CameraParams& p) { p.mergeProcesses(stages("-d/ -b/x -c/x -c/y")); }, "a/ -b/x -c/x -c/y -d/"},
        {"a/x b/ c/y", [](CameraParams& p) { p.restrictProcessMode("x"); }, "a/x b/"},
    };
    for (auto const& c : cases) {
        CameraParams params = with(c.before);
        c.change(params);
        EXPECT_EQ(c.after, listed(params)) << c.before;
    }
}

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
    params.setProcesses(stages("-a/x"));

    String const xml = params.toXML();
    EXPECT_EQ(0u, xml.find("<CameraParams name=\"a&amp;b\" port=\"8\" guid=\"00112233-4455-6677-8899-aabbccddeeff\"><revision"));
    size_t place = 0;
    for (char const* element :
        {"<revision", "<gpu-device>3<", "<VideoProcesses>", "<scale>0.5<", "<video-url>v<", "<attributes ", "<log-dir>l<"}) {
        EXPECT_LT(place, xml.find(element)) << element;
        place = xml.find(element);
    }
    CameraParams fromXml = with("old/");
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
