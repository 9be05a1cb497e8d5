#include "Meridane/Subsystem/TrackerCmd.h"

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"

TrackerCmd::TrackerCmd(rktl::url const& url, SubType subType)
    : MeridaneCmd(family, subType, url)
{
    MeridaneAddress address;
    if (!address.fromURL(url) || !address.isValid())
        throw rktl::Exception("projects/src/Meridane/Subsystem/TrackerCmd", "TrackerCmd",
            "Invalid URL:  Camera and Machine field must be defined.");
}

TrackerCmd TrackerCmd::queryImages(rktl::url const& url)
{
    return TrackerCmd(url, queryDebugImages);
}

TrackerCmd TrackerCmd::removeObject(rktl::url const& url, unsigned int id)
{
    TrackerCmd command(url, removeTrackedObject);
    command.getObjectStream()->write(rktl::Integer(static_cast<int32_t>(id)));
    return command;
}

TrackerCmd TrackerCmd::lock(rktl::url const& url)
{
    return TrackerCmd(url, lockTracking);
}

TrackerCmd TrackerCmd::unlock(rktl::url const& url)
{
    return TrackerCmd(url, unlockTracking);
}

unsigned int TrackerCmd::getObjectID() const
{
    rktl::Integer id;
    getObjectStream()->peek(id);
    return static_cast<unsigned int>(id.value);
}

rktl::String TrackerCmd::getCommandName() const
{
    return "TrackerCmd";
}

rktl::String TrackerCmd::getCommandSubName(unsigned int subType) const
{
    static constexpr char const* names[subTypeCount] = {
        "Query Debug Images", "Remove Object", "Lock Tracking", "Unlock Tracking"};
    return subType < subTypeCount ? names[subType] : MeridaneCmd::getCommandSubName(subType);
}
