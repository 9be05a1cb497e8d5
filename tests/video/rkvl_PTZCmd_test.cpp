#include "video/rkvl_PTZCmd.h"

#include "misc/rktl_url.h"
#include "support/bytes.h"

#include <gtest/gtest.h>

using rkvl::PTZCmd;
using support::messageOf;

namespace {

TEST(PTZCmd, NamesEachMove)
{
    char const* const names[] = {
        "QueryPresets", "AddPreset", "GotoPreset", "PanLeft", "PanRight", "TiltUp", "TiltDown", "ZoomIn", "ZoomOut"};
    for (unsigned int subType = 0; subType < std::size(names); ++subType) {
        PTZCmd const command(PTZCmd::SubType(subType), nullptr, rktl::url("DVC://dome"));
        EXPECT_EQ(std::string("PTZCmd::") + names[subType], command.getCommandString());
        EXPECT_EQ(2005, command.getCommandType());
        EXPECT_TRUE(command.getObjectStream()->isEmpty());
    }
    EXPECT_EQ("Undefined(9)", PTZCmd::queryPresets("dvc://dome").getCommandSubName(9));
}

TEST(PTZCmd, GoesToNamedPlacesOfAVideoSource)
{
    rktl::String const door("door");
    EXPECT_EQ("door", PTZCmd::gotoPreset("door", "dvc://dome").getPreset());
    EXPECT_EQ("door", PTZCmd(PTZCmd::addPreset, &door, rktl::url("dvc://dome")).getPreset());
    EXPECT_EQ("rkvl::PTZCmd::getPreset() - Only valid for a GotoPreset and AddPreset Command.",
        messageOf([] { PTZCmd::queryPresets("dvc://dome").getPreset(); }));
    EXPECT_THROW(PTZCmd(PTZCmd::addPreset, nullptr, rktl::url("dvc://dome")).getPreset(), rktl::Exception);
    for (char const* const url : {"dvc:/", "meridane://dome", "", "dome"})
        EXPECT_EQ("rkvl::PTZCmd::Invalid PTZ Command", messageOf([&] { PTZCmd::queryPresets(url); })) << url;
}

} // namespace
