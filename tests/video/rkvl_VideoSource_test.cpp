#include <gtest/gtest.h>

#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"
#include "plugin/rkpl_LastError.h"
#include "support/bytes.h"
#include "video/rkvl_VideoSource.h"

namespace {

using rktl::String;

String sizes(unsigned int width, unsigned int height)
{
    rksl::Set<rkvl::Resolution> set;
    set.insert(rkvl::Resolution(1, 1)); // goes
    rkvl::VideoSource::getResolutions(width, height, set);
    String text;
    for (auto const& size : set)
        text += String::fromFormat("%dx%d ", size.width.value, size.height.value);
    return text;
}

TEST(VideoSource, OffersTheHalvingsDownToAbout160By120)
{
    EXPECT_EQ("160x120 320x240 640x480 ", sizes(640, 480));
    EXPECT_EQ("", sizes(159, 119));
    EXPECT_EQ("160x119 ", sizes(160, 119)); // 80x59 is below both limits
    EXPECT_EQ("50x125 101x250 ", sizes(101, 250));
    EXPECT_EQ("", sizes(0, 0));
}

TEST(VideoSource, SanitizeHidesOnlyTheKeysBehindThePrefix)
{
    rktl::url const url(String("rtsp://cam/live?fps=5&rk-home-preset=1&rk-ptz-enabled=true&rkx=2"));
    using rkvl::VideoSource;
    EXPECT_EQ("rtsp://cam/live?fps=5&rkx=2", VideoSource::sanitize(url, "rk", ""));
    EXPECT_EQ("rtsp://cam/live?fps=5&rk-ptz-enabled=true&rkx=2", VideoSource::sanitize(url, "rk", "rk-ptz"));
    EXPECT_EQ(String(url), VideoSource::sanitize(url, "other", ""));
}

struct Still : rkvl::VideoSource, rkpl::LastError {
    String error;
    bool supports(char const* wanted, rkpl::Plugin** result) override { return VideoSource::supports(wanted, result); }
    void release() override { delete this; }
    rkpl::PluginPtr<VideoSource> create() const override { return rkpl::PluginPtr<VideoSource>(new Still); }
    bool open(char const* uri, rktl::ElapsedTime const&) override
    {
        bool const good = String(uri) == "still:";
        error = good ? "" : "no such picture";
        return good;
    }
    rkvl::Resolution getSize() const override { return {320, 240}; }
    double getFps() const override { return 12.5; }
    String getFriendlyName() const override { return "Still"; }
    String getLastError() const override { return error; }
};

TEST(VideoSource, ValidateAsksANewSourceAndReportsItsError)
{
    Still const source;
    rktl::ElapsedTime const limit(100);
    rktl::ResourceInfo info;
    info.setAttribute("left", "over");
    source.validate("still:", info, limit);
    rksl::StringMap<String> const want = {
        {"fps", "12.500000"}, {"height", "240"}, {"resolutions", "160x120|320x240"}, {"width", "320"}};
    EXPECT_EQ(want, info.getAttributes());
    EXPECT_EQ("Still", info.getFriendlyName());
    EXPECT_EQ("still:", info.getURL());
    for (char const* bad : {"other:", static_cast<char const*>(nullptr)})
        EXPECT_NE(std::string::npos, support::thrownBy([&] { source.validate(bad, info, limit); }).find("Invalid video uri."));
    EXPECT_THROW(source.validate("other:", info, limit), rktl::Exception);
    EXPECT_EQ("no such picture", info.getAttribute("error"));
}

} // namespace
