#include "application/SpiesFile.h"

#include "support/TempFolder.h"
#include "trackers/EventSpies/Direction.h"

#include <gtest/gtest.h>

#include <fstream>

TEST(SpiesFileOnACamera, IsRefusedForWantOfAParser)
{
    TempFolder home;
    std::ofstream(home / "spies.xml") << "<DirectionSpy><EventSpy><name>x</name></EventSpy></DirectionSpy>";
    SettingsMap settings;
    settings["spies_file"] = "spies.xml";
    settings["spies_only"] = "1";
    SimpleTracker::Params params = readTrackerParams(settings, readDirection(settings));
    rktl::String complaint;
    EXPECT_FALSE(takeSpiesFile(settings, home.path(), params, complaint));
    EXPECT_EQ(home.path() + "/spies.xml: this build reads no XML documents", complaint);
    EXPECT_EQ(1u, params.spies.size());
}
