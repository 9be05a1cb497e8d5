#include "application/Settings.h"

#include "misc/rktl_ElapsedTime.h"
#include "trackers/EventSpies/Direction.h"
#include "video/rkvl_Resolution.h"

#include <gtest/gtest.h>

namespace {

TEST(Settings, TakesTheRootsChildrenAsKeys)
{
    SettingsMap settings;
    ASSERT_TRUE(parseSettings("<any><a>1</a><b x='2'/><zone>\n <p>3</p> tail\n</zone><a>4</a></any>", settings));
    EXPECT_EQ(3u, settings.size());
    EXPECT_EQ("4", settings["a"]);
    EXPECT_EQ("", settings["b"]);
    EXPECT_EQ("\n <p>3</p> tail\n", settings["zone"]);
}

TEST(Settings, ReadsTheNumberThatATextBeginsWith)
{
    EXPECT_EQ(3.0, decimalValue("  3 "));
    EXPECT_EQ(-2.5, decimalValue("\n-2.5%"));
    EXPECT_EQ(0.5, decimalValue(".5"));
    EXPECT_EQ(1200.0, decimalValue("1.2e3"));
    for (char const* text : {"", "  ", "x1", "-", ".", "nan", "inf", "-infinity", "0x10"})
        EXPECT_EQ(0.0, decimalValue(text)) << text;
}

TEST(Settings, NamesModelFilesFromTheHomeOn)
{
    SettingsMap settings;
    settings["model_files"] = " models/a.model,,b c.model , ";
    EXPECT_EQ((rksl::Set<rktl::String>{"/home/models/a.model", "/home/b c.model"}), readModelFiles(settings, "/home"));
    EXPECT_EQ((rksl::Set<rktl::String>{"models/a.model", "b c.model"}), readModelFiles(settings, ""));
}

TEST(Settings, BecomeSpyIntervalAndParameters)
{
    SettingsMap settings;
    ASSERT_TRUE(parseSettings("<s><video_resolution>320 x 240</video_resolution><angle>450</angle><tolerance> 30</tolerance>"
                              "<min_distance>60</min_distance><min_age>  1.5 </min_age><min_age_unit>Seconds</min_age_unit>"
                              "<max_width>25</max_width><max_height> 12.5 </max_height><alarm_interval>2</alarm_interval>"
                              "<alarm_interval_unit>minute</alarm_interval_unit><min_width>9</min_width>"
                              "<min_height>-3</min_height><sensitivity>33.9</sensitivity>"
                              "<light_sensitivity>120</light_sensitivity></s>",
        settings));
    rkvl::Resolution resolution;
    ASSERT_TRUE(readResolution(settings, resolution));
    EXPECT_EQ(rkvl::Resolution(320, 240), resolution);

    Direction const spy = readDirection(settings);
    EXPECT_EQ(90u, spy.getAngle());
    EXPECT_EQ(30u, spy.getTolerance());
    EXPECT_EQ(60u, spy.getMinDistance());
    EXPECT_EQ(1500, spy.getTimeWindow().toMilliseconds());
    EXPECT_EQ(1000, spy.getMinAge().toMilliseconds()); // the spy's own, whatever "min_age" says
    EXPECT_EQ(0.25f, spy.getMaxWidth());
    EXPECT_EQ(0.125f, spy.getMaxHeight());
    EXPECT_EQ(120000, readAlarmInterval(settings).toMilliseconds());

    SimpleTracker::Params const params = readTrackerParams(settings, spy);
    EXPECT_EQ(0.33f, params.sensitivity); // a whole number of percent
    EXPECT_EQ(1.2f, params.sceneSensitivity);
    EXPECT_EQ(0.5f, params.minConfidence);
    EXPECT_EQ(9, params.minWidth);
    EXPECT_EQ(-3, params.minHeight);
    EXPECT_EQ(4, params.mode);
    ASSERT_EQ(1u, params.spies.size());
}

// What a camera is delivered with names every key and stands within all limits.
TEST(Settings, OfTheDefaultFileAreComplete)
{
    rktl::String text;
    ASSERT_TRUE(text.fromFile(CONTRAFLOW_SOURCE_DIR "/package/html/default_settings_xml.txt"));
    SettingsMap settings;
    ASSERT_TRUE(parseSettings(text, settings));
    for (char const* key : {"video_resolution", "min_age", "min_age_unit", "angle", "min_distance", "tolerance", "max_height",
             "max_width", "alarm_interval", "alarm_interval_unit", "min_width", "min_height", "sensitivity", "light_sensitivity"})
        EXPECT_FALSE(settings[key].empty()) << key;
    EXPECT_GT(readDirection(settings).getTimeWindow().toMilliseconds(), 0);
    EXPECT_GT(readAlarmInterval(settings).toMilliseconds(), 0);
    SimpleTracker tracker(nullptr, 0, false);
    EXPECT_TRUE(tracker.setParameters(readTrackerParams(settings, readDirection(settings)))) << tracker.getLastError();
}

} // namespace
