#include "application/SpiesFile.h"

#include "support/TempFolder.h"
#include "support/bytes.h"
#include "trackers/EventSpies/Direction.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

/// A whole spy with some of its keys replaced.
std::string direction(std::string const& base, std::string const& keys = "<angle>90</angle><tolerance>20</tolerance>")
{
    return "<DirectionSpy><EventSpy>" + base + "</EventSpy>" + keys +
        "<time-window unit=\"second\">1</time-window></DirectionSpy>";
}

std::string complaintOf(std::string const& text)
{
    return support::thrownBy([&] { SpiesFile::parse(text); });
}

TEST(SpiesFile, IsTheFormOfTheDetectorsParameters)
{
    SpiesFile const file = SpiesFile::parse("\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- two -->\n" + direction("<name>up</name>") +
        "\n<processing-interval unit=\"millisecond\">40</processing-interval>\n" + direction("<desc>no name</desc>"));
    ASSERT_EQ(2u, file.spies.size());
    EXPECT_EQ("up", file.spies.front().getSpy()->getName());
    EXPECT_EQ(90u, dynamic_cast<Direction const&>(*file.spies.back().getSpy()).getAngle());
    EXPECT_EQ(40, file.processingInterval.toMilliseconds());
    EXPECT_EQ(200, SpiesFile::parse(direction("<name/>")).processingInterval.toMilliseconds());
}

TEST(SpiesFile, NamesTheSpyAndTheElementThatItRefuses)
{
    std::string const good = direction("<name>gate</name>");
    struct {
        std::string text;
        char const* complaint;
    } const cases[] = {
        {"<processing-interval unit=\"second\">1</processing-interval>", "holds no spy"},
        {"just text", "there is text between the spies: \"just text\""},
        {good + "\n\n<DirectionSpy><EventSpy>", "line 3: "},
        {good + "</spies><spies>", "line 1: there is not exactly one element around everything"},
        {good + good, "DirectionSpy \"gate\": name: is taken by another spy"},
        {direction("<name>Spy 1</name>"), "DirectionSpy \"Spy 1\": name: is taken by another spy"},
        {"<spies>" + good + "</spies>", "spies: is no type of spy"},
        {"<ExternalEventSpy><EventSpy><name>io</name></EventSpy></ExternalEventSpy>", "ExternalEventSpy \"io\": is "},
        {"<DirectionSpy/>", "DirectionSpy: is incomplete"},
        {"<processing-interval>1</processing-interval>" + good,
            "processing-interval: expected a unit (day, hour, minute, second or millisecond), not \"\""},
        {"<processing-interval unit=\"second\">-1</processing-interval>" + good,
            "processing-interval: expected a number from 0 up, not \"-1\""},
        {direction("<name>gate</name>", "<angel>90</angel>"), "DirectionSpy \"gate\": angel: there is no such element here"},
        {direction("<name>gate</name>", "<angle>-90</angle><tolerance>1.5</tolerance>"),
            "DirectionSpy \"gate\": angle: expected a whole number from 0 to 4294967295, not \"-90\"; "
            "tolerance: expected a whole number from 0 to 4294967295, not \"1.5\""},
        {direction("<name>gate</name><max-width>nan</max-width>"),
            "DirectionSpy \"gate\": EventSpy: max-width: expected a number from 0 up, not \"nan\""},
        {direction("<name>gate</name><max-width>0</max-width>"), "DirectionSpy \"gate\": max-width: 0 lets no object through"},
        {direction("<name>gate</name><min-age unit=\"fortnight\">1</min-age>"),
            "DirectionSpy \"gate\": EventSpy: min-age: expected a unit (day, hour, minute, second or millisecond), not "
            "\"fortnight\""},
        {direction("<name>gate</name><zones><zone><vertex x=\"0\" y=\"0\"/><vertex x=\"1\"/></zone></zones>"),
            "DirectionSpy \"gate\": EventSpy: zones: zone: vertex: expected a number for y, not \"\""},
        {direction("<name>gate</name><zones><zone><vertex x=\"0\" y=\"inf\"/></zone></zones>"),
            "DirectionSpy \"gate\": EventSpy: zones: zone: vertex: expected a number for y, not \"inf\""},
        {direction("<name>gate</name><zones><zone><vertex x=\"0\" y=\"0\"/></zone></zones>"),
            "DirectionSpy \"gate\": zones: zone 1 has 1 point, it needs 3"},
        {direction("<name>gate</name>stray"), "DirectionSpy \"gate\": EventSpy: there is text between the elements: \"stray\""},
        {std::string(1024 * 1024 + 1, ' '), "is larger than 1048576 bytes"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.complaint, complaintOf(c.text).substr(0, std::string(c.complaint).size())) << c.text.substr(0, 400);
}

TEST(SpiesFile, SettingsTakeItBesideTheirOwnSpyOrAlone)
{
    TempFolder home;
    std::ofstream(home / "mine.xml") << direction("<classes><class>car</class></classes>");
    std::ofstream(home / "broken.xml") << "\n<DirectionSpy>";
    SettingsMap settings;
    Direction const own = readDirection(settings);
    auto const take = [&](char const* file, char const* only, rktl::String& complaint) {
        settings["spies_file"] = file;
        settings["spies_only"] = only;
        SimpleTracker::Params params = readTrackerParams(settings, own);
        EXPECT_EQ(std::string(file) == "mine.xml", takeSpiesFile(settings, home.path(), params, complaint)) << file;
        EXPECT_EQ(std::string(file) == "mine.xml", params.keepSpyClasses);
        EXPECT_EQ(params.keepSpyClasses ? 200 : 0, params.processingInterval.toMilliseconds());
        return params.spies.size();
    };
    rktl::String complaint;
    EXPECT_EQ(1u, take("", "1", complaint));
    EXPECT_EQ(2u, take("mine.xml", "", complaint));
    EXPECT_EQ(2u, take("mine.xml", "0", complaint));
    EXPECT_EQ(1u, take("mine.xml", "1", complaint));
    EXPECT_EQ("", complaint);
    EXPECT_EQ(1u, take("none.xml", "1", complaint));
    EXPECT_EQ(home.path() + "/none.xml: cannot be read", complaint);
    EXPECT_EQ(1u, take("broken.xml", "1", complaint));
    EXPECT_EQ(0u, complaint.find(home.path() + "/broken.xml: line 2: ")) << complaint;
}

} // namespace
