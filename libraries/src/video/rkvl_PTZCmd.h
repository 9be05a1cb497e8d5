#pragma once

#include "streams/rksl_Command.h"

namespace rkvl {

/// Commands that move a camera: pan, tilt and zoom, and the named places that it can go to. Family 2005. The url is that of
/// the camera's video source, with the scheme "dvc". On the wire it is a rksl::Command; errors are rktl::Exception.
class PTZCmd : public rksl::Command {
public:
    static constexpr unsigned int family = 2005;

    enum SubType : unsigned int {
        queryPresetNames,
        addPreset,
        goTo,
        panLeft,
        panRight,
        tiltUp,
        tiltDown,
        zoomIn,
        zoomOut,
        subTypeCount,
    };

    /// argument: for addPreset the name as a rktl::String; null for none; copied. Throws for another scheme and for a url
    /// without a host.
    PTZCmd(SubType subType, rksl::Serializable const* argument, rktl::url const& url);

    /// Takes over a record as it arrived, whatever its url; the objects are shared with it.
    explicit PTZCmd(rksl::Command const& command);

    static PTZCmd queryPresets(rktl::String const& url);
    static PTZCmd gotoPreset(rktl::String const& preset, rktl::String const& url);

    /// The name of the place to add or to go to. Throws on any other sub type, and when the command carries none.
    rktl::String getPreset() const;

    rktl::String getCommandName() const override;
    rktl::String getCommandSubName(unsigned int subType) const override;
};

} // namespace rkvl
