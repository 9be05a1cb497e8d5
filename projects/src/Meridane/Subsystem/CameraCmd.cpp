#include "Meridane/Subsystem/CameraCmd.h"

#include "misc/rktl_url.h"

CameraCmd::CameraCmd(rktl::url const& url, SubType subType, bool audit)
    : MeridaneCmd(family, subType, url)
{
    setAudit(audit);
}

CameraCmd CameraCmd::query(rktl::url const& url)
{
    return CameraCmd(url, queryCameras, false);
}

rktl::String CameraCmd::getCommandName() const
{
    return "CameraCmd";
}

rktl::String CameraCmd::getCommandSubName(unsigned int subType) const
{
    static constexpr char const* names[subTypeCount] = {"Load Cameras", "Reload Cameras", "Add Camera", "Remove Camera",
        "Set Camera", "Rename Camera", "Get Camera Params", "Query Cameras", "Disable Camera", "Enable Camera", "CanAdd",
        "GetInfo", "Get Track Summaries", "Query Track Summaries", "Count Track Summaries", "Get Reference Image", "PTZ",
        "Query Camera Status", "Query Enrollment Cameras", "Move Camera"};
    return subType < subTypeCount ? names[subType] : MeridaneCmd::getCommandSubName(subType);
}
