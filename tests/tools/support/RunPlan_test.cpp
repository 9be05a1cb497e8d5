#include "support/RunPlan.h"

#include <gtest/gtest.h>

using Json = nlohmann::ordered_json;

namespace {

SettingsMap settings()
{
    return {{"sensitivity", "50"}, {"light_sensitivity", "40"}, {"min_width", "8"}, {"min_height", "9"}, {"angle", "180"},
        {"tolerance", "30"}, {"min_age", "1"}, {"min_age_unit", "second"}};
}

std::string complaint(char const* run)
{
    try {
        tools::RunPlan(settings()).apply(Json::parse(run));
    } catch (std::runtime_error const& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(RunPlan, KeepsWhatARunFileNamesAndWritesItBack)
{
    char const* const text = R"({"mode": 3, "min_width": 12, "sensitivity": 0.25, "mask_polygons": [[[0, 0], [1, 0], [1, 0.5]]],
        "processing_interval_ms": 200, "resurrection_window_ms": 10000, "resurrection_distance": 40,
        "resurrection_confidence": 0.5, "invalid_window_ms": 5000, "defer_time_ms": 1000, "min_track_length": 3,
        "max_track_merges": 2, "always_update_histograms": false, "advanced_histograms": true, "spies": "none"})";
    tools::RunPlan plan(settings());
    plan.apply(Json::parse(text));
    EXPECT_EQ(3, plan.params.mode);
    EXPECT_EQ(9, plan.params.minHeight); // of the settings
    EXPECT_EQ(0.25f, plan.params.sensitivity);
    EXPECT_EQ(200, plan.params.processingInterval.toMilliseconds());
    EXPECT_TRUE(plan.params.spies.empty());
    EXPECT_EQ(10000, plan.tracker.mResurrectionWindow.toMilliseconds());
    EXPECT_EQ(0, plan.tracker.mAlwaysUpdateHistograms);
    EXPECT_EQ(1, plan.tracker.mAdvancedHistograms);
    EXPECT_EQ(plan.params.maskPolygons, plan.tracker.mOcclusionZones); // unless they are named

    Json const written = plan.toJson();
    Json named = Json::parse(text);
    for (auto const& [name, value] : named.items())
        EXPECT_EQ(value, written[name]) << name;
    EXPECT_FALSE(written.contains("min_height"));
    tools::RunPlan again(settings());
    again.apply(written);
    EXPECT_EQ(written, again.toJson());
}

TEST(RunPlan, TakesSpiesAsXml)
{
    tools::RunPlan plan(settings());
    std::string const xml = plan.params.spies.front().toXML();
    plan.apply(Json{{"spies", xml + xml}});
    EXPECT_EQ(2u, plan.params.spies.size());
    EXPECT_EQ(xml + xml, plan.toJson()["spies"]);
}

TEST(RunPlan, NamesTheValueThatDoesNotFit)
{
    struct {
        char const* run;
        char const* complaint;
    } const cases[] = {
        {R"({"min_widht": 3})", "min_widht: is no value of a run"},
        {R"({"mode": 2.5})", "mode: expected a whole number from -2147483648 to 2147483647"},
        {R"({"mode": 18446744073709551615})", "mode: expected a whole number from -2147483648 to 2147483647"},
        {R"({"sensitivity": "high"})", "sensitivity: expected a number"},
        {R"({"mask_polygons": [[[0, 0], [1, 1]]]})", "mask_polygons: expected polygons of 3 points or more"},
        {R"({"mask_polygons": 5})", "mask_polygons: expected a list of polygons"},
        {R"({"spies": "<Nonsense/>"})", "spies: expected spies that are known and complete, not <Nonsense>"},
        {R"({"spies": "<DirectionSpy>"})", "spies: expected XML elements, or \"none\""},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.complaint, complaint(c.run)) << c.run;
    SettingsMap texts;
    EXPECT_THROW(tools::readRunSettings(Json::array(), texts), std::runtime_error);
    EXPECT_THROW(tools::readRunSettings(Json{{"settings", {{"angle", 5}}}}, texts), std::runtime_error);
}
