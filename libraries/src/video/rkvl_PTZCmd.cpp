#include "video/rkvl_PTZCmd.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"

namespace rkvl {

namespace {

[[noreturn]] void raise(char const* message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/video/rkvl_PTZCmd", "rkvl::PTZCmd", message, line);
}

} // namespace

PTZCmd::PTZCmd(SubType subType, rksl::Serializable const* argument, rktl::url const& url)
    : rksl::Command(rktl::String(url), family, subType)
{
    if (url.mScheme.iCompare("dvc") != 0 || url.mHost.empty())
        raise("Invalid PTZ Command");
    if (argument)
        getObjectStream()->write(*argument);
}

PTZCmd::PTZCmd(rksl::Command const& command)
    : rksl::Command(command)
{
}

PTZCmd PTZCmd::queryPresets(rktl::String const& url)
{
    return PTZCmd(queryPresetNames, nullptr, rktl::url(url));
}

PTZCmd PTZCmd::gotoPreset(rktl::String const& preset, rktl::String const& url)
{
    return PTZCmd(goTo, &preset, rktl::url(url));
}

rktl::String PTZCmd::getPreset() const
{
    if (getCommandSubType() != addPreset && getCommandSubType() != goTo)
        raise("getPreset() - Only valid for a GotoPreset and AddPreset Command.");
    rktl::String preset;
    getObjectStream()->peek(preset);
    return preset;
}

rktl::String PTZCmd::getCommandName() const
{
    return "PTZCmd";
}

rktl::String PTZCmd::getCommandSubName(unsigned int subType) const
{
    static constexpr char const* names[subTypeCount] = {
        "QueryPresets", "AddPreset", "GotoPreset", "PanLeft", "PanRight", "TiltUp", "TiltDown", "ZoomIn", "ZoomOut"};
    return subType < subTypeCount ? names[subType] : rksl::Command::getCommandSubName(subType);
}

} // namespace rkvl
