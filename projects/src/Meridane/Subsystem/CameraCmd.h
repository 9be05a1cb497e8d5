#pragma once

#include "Meridane/Subsystem/MeridaneCmd.h"

/// Commands to manage cameras. Family 3002.
class CameraCmd : public MeridaneCmd {
public:
    static constexpr unsigned int family = 3002;

    enum SubType : unsigned int {
        loadCameras,
        reloadCameras,
        addCamera,
        removeCamera,
        setCamera,
        renameCamera,
        getCameraParams,
        queryCameras,
        disableCamera,
        enableCamera,
        canAddCamera,
        getCameraInfo,
        getTrackSummaries,
        queryTrackSummaries,
        countTrackSummaries,
        getReferenceImage,
        ptzCamera,
        queryStatus,
        queryEnrollment,
        moveCamera,
        subTypeCount,
    };

    /// For the sub types without objects.
    CameraCmd(rktl::url const& url, SubType subType, bool audit);
    using MeridaneCmd::MeridaneCmd;

    static CameraCmd query(rktl::url const& url);

    rktl::String getCommandName() const override;
    rktl::String getCommandSubName(unsigned int subType) const override;
};
