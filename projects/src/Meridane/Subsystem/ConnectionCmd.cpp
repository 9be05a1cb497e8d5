#include "Meridane/Subsystem/ConnectionCmd.h"

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"

namespace {

[[noreturn]] void raise(char const* message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("projects/src/Meridane/Subsystem/ConnectionCmd", "ConnectionCmd", message, line);
}

bool isVideoSource(rktl::url const& url)
{
    return url.mScheme.iCompare("dvc") == 0;
}

bool namesCamera(rktl::url const& url)
{
    MeridaneAddress address;
    return address.fromURL(url) && address.isValid();
}

} // namespace

char const* const ConnectionCmd::ConnectionCmdStrings[subTypeCount] = {"Connect Camera", "Disconnect Camera", "Request Frames"};

ConnectionCmd ConnectionCmd::connect(rktl::url const& url)
{
    if (url.mHost.empty() || !validate(url))
        raise("Invalid Video URL:  Domain must be specified and scheme must be DVC or MERIDANE");
    if (!isVideoSource(url) && !namesCamera(url))
        raise("Invalid Camera URL:  Machine and Camera must be set.");
    return ConnectionCmd(family, connectCamera, url);
}

ConnectionCmd ConnectionCmd::disconnect(rktl::url const& url)
{
    if (isVideoSource(url)) {
        if (url.mHost.empty())
            raise("Invalid Video URL:  Domain cannot be empty.");
    } else if (!namesCamera(url)) {
        raise("Invalid Video  URL:  Machine and Camera must be set.");
    }
    return ConnectionCmd(family, disconnectCamera, url);
}

ConnectionCmd ConnectionCmd::frameRequest(rktl::url const& url, FrameRequest const& request)
{
    ConnectionCmd command(family, requestFrames, url);
    command.getObjectStream()->write(request);
    return command;
}

FrameRequest ConnectionCmd::getFrameRequest() const
{
    if (getCommandSubType() != requestFrames)
        raise("getFrameRequest() - only usable on a FrameRequest Command");
    FrameRequest request;
    getObjectStream()->peek(request);
    return request;
}

rktl::String ConnectionCmd::getCommandName() const
{
    return "ConnectionCmd";
}

rktl::String ConnectionCmd::getCommandSubName(unsigned int subType) const
{
    return subType < subTypeCount ? ConnectionCmdStrings[subType] : MeridaneCmd::getCommandSubName(subType);
}
