#pragma once

#include "Meridane/Subsystem/MeridaneCmd.h"

/// Commands to the tracker of a camera. Family 3012.
class TrackerCmd : public MeridaneCmd {
public:
    static constexpr unsigned int family = 3012;

    enum SubType : unsigned int { queryDebugImages, removeTrackedObject, lockTracking, unlockTracking, subTypeCount };

    /// Throws for a url that names no camera.
    TrackerCmd(rktl::url const& url, SubType subType);
    using MeridaneCmd::MeridaneCmd;

    // What a client sends.
    static TrackerCmd queryImages(rktl::url const& url);
    static TrackerCmd removeObject(rktl::url const& url, unsigned int id);
    static TrackerCmd lock(rktl::url const& url);
    static TrackerCmd unlock(rktl::url const& url);

    /// Throws when the command carries none.
    unsigned int getObjectID() const;

    rktl::String getCommandName() const override;
    rktl::String getCommandSubName(unsigned int subType) const override;
};
