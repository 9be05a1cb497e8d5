#include "Meridane/Subsystem/CameraCmd.h"

#include "BaseClasses/MeridaneAddress.h"
#include "Meridane/Subsystem/SummaryQuery.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"

#include <algorithm>

namespace {

[[noreturn]] void raise(rktl::String const& message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("projects/src/Meridane/Subsystem/CameraCmd", "CameraCmd", message.c_str(), line);
}

/// word: what the refusal calls the operation.
MeridaneAddress requireCamera(rktl::url const& url, char const* word)
{
    MeridaneAddress address;
    if (!address.fromURL(url) || !address.isValid())
        raise(word + rktl::String(" - must provide a valid machine and camera."));
    return address;
}

void requireName(MeridaneAddress const& address, CameraParams const& params)
{
    if (address.getCamera() != params.getName())
        raise("URI camera name does not match params name.");
}

rktl::url anyCamera()
{
    return MeridaneAddress::createURL("*", "*", "", MeridaneAddress::localSite, {});
}

/// The command with its objects, in order.
template <class... Objects>
CameraCmd make(rktl::url const& url, CameraCmd::SubType subType, bool audit, Objects const&... objects)
{
    CameraCmd command(url, subType, audit);
    (command.getObjectStream()->write(objects), ...);
    return command;
}

} // namespace

CameraCmd::CameraCmd(rktl::url const& url, SubType subType, bool audit)
    : MeridaneCmd(family, subType, url)
{
    setAudit(audit);
}

// ---- What a client sends ----

CameraCmd CameraCmd::load(rktl::url const& url, rksl::StringMap<CameraParams> const& params)
{
    return make(url, loadCameras, false, params);
}

CameraCmd CameraCmd::reload(rktl::url const& url)
{
    MeridaneAddress address;
    if (!address.fromURL(url) || address.getMachine().empty())
        raise("remove - must provide a valid machine.");
    return make(url, reloadCameras, false);
}

CameraCmd CameraCmd::add(rktl::url const& url, CameraParams const& params, bool flag)
{
    requireName(requireCamera(url, "Add"), params);
    return make(url, addCamera, true, params, rktl::Integer(flag));
}

CameraCmd CameraCmd::remove(rktl::url const& url)
{
    requireCamera(url, "Remove");
    return make(url, removeCamera, true);
}

CameraCmd CameraCmd::set(rktl::url const& url, CameraParams const& params)
{
    requireName(requireCamera(url, "Set"), params);
    return make(url, setCamera, true, params);
}

CameraCmd CameraCmd::set(rktl::url const& url, rktl::String const& stored, rktl::TimeStamp const& revision)
{
    CameraParams params;
    if (!params.fromXML(stored.c_str()))
        raise("Set - must provide the XML of camera params.");
    params.setRevision(revision);
    return set(url, params);
}

CameraCmd CameraCmd::rename(rktl::url const& url, rktl::String const& newName)
{
    requireCamera(url, "Rename");
    if (newName.empty())
        raise("rename - must provide a valid camera name.");
    return make(url, renameCamera, true, newName);
}

CameraCmd CameraCmd::getParams(rktl::url const& url)
{
    requireCamera(url, "GetParams");
    return make(url, getCameraParams, false);
}

CameraCmd CameraCmd::query(rktl::url const& url)
{
    return make(url, queryCameras, false);
}

CameraCmd CameraCmd::disable(rktl::url const& url)
{
    return make(url, disableCamera, true);
}

CameraCmd CameraCmd::enable(rktl::url const& url)
{
    return make(url, enableCamera, true);
}

CameraCmd CameraCmd::canAdd(rktl::url const& url, CameraParams const& params)
{
    return make(url, canAddCamera, false, params);
}

CameraCmd CameraCmd::getInfo(rktl::url const& url)
{
    return make(url, getCameraInfo, false);
}

CameraCmd CameraCmd::getSummaries(rktl::url const& url, bool flag)
{
    return make(url, getTrackSummaries, false, rktl::Integer(flag));
}

CameraCmd CameraCmd::querySummaries(SummaryQuery const& query)
{
    return make(anyCamera(), queryTrackSummaries, false, query);
}

CameraCmd CameraCmd::countSummaries(SummaryQuery const& query)
{
    return make(anyCamera(), countTrackSummaries, false, query);
}

CameraCmd CameraCmd::getImage(rktl::url const& url)
{
    requireCamera(url, "GetImage");
    return make(url, getReferenceImage, false);
}

CameraCmd CameraCmd::ptz(rktl::url const& url, rkvl::PTZCmd const& command)
{
    requireCamera(url, "PTZ");
    return make(url, ptzCamera, false, command);
}

CameraCmd CameraCmd::queryCameraStatus(rktl::url const& url)
{
    requireCamera(url, "QueryCameraStatus");
    return make(url, queryStatus, false);
}

CameraCmd CameraCmd::queryEnrollmentCameras(rktl::url const& url)
{
    return make(url, queryEnrollment, false);
}

CameraCmd CameraCmd::move(rktl::url const& url, rktl::String const& target)
{
    return make(url, moveCamera, true, target);
}

// ---- What a command carries ----

bool CameraCmd::isOneOf(std::initializer_list<SubType> subTypes) const
{
    return std::find(subTypes.begin(), subTypes.end(), getCommandSubType()) != subTypes.end();
}

CameraParams CameraCmd::getParams() const
{
    if (!isOneOf({addCamera, setCamera}))
        raise("getParams - only usable with a set/add Command ");
    CameraParams params;
    getObjectStream()->peek(params);
    return params;
}

bool CameraCmd::getBoolean() const
{
    rktl::Integer flag = 0;
    if (isOneOf({getTrackSummaries}))
        getObjectStream()->peek(flag);
    else if (!isOneOf({addCamera}))
        raise("getBoolean - only usable with a summaries or add Command ");
    else if (getObjectStream()->peek(2, nullptr, &flag) == 0)
        raise("getBoolean - the command carries none");
    return flag != 0;
}

rktl::String CameraCmd::getNewName() const
{
    if (!isOneOf({renameCamera, moveCamera}))
        raise("getNewName() - only usable with a rename/move commands.");
    rktl::String name;
    getObjectStream()->peek(name);
    return name;
}

void CameraCmd::getCameraMap(rksl::StringMap<CameraParams>& params) const
{
    if (!isOneOf({loadCameras}))
        raise("getCameraMap - only usable with a load Command ");
    getObjectStream()->peek(params);
}

void CameraCmd::getQuery(SummaryQuery& query) const
{
    if (!isOneOf({queryTrackSummaries, countTrackSummaries}))
        raise("getQuery - only usable with a summaries Command ");
    getObjectStream()->peek(query);
}

rkvl::PTZCmd CameraCmd::getPTZCmd() const
{
    if (!isOneOf({ptzCamera}))
        raise("getPTZCmd - only usable with a PTZ Command ");
    rksl::Command carried("dvc:/", rkvl::PTZCmd::family, 0);
    getObjectStream()->peek(carried);
    return rkvl::PTZCmd(carried);
}

void CameraCmd::setRevision(rktl::TimeStamp const& revision)
{
    if (!isOneOf({setCamera}))
        raise("setRevision - only usable with a set Command ");
    CameraParams params = getParams();
    params.setRevision(revision);
    getObjectStream()->clear();
    getObjectStream()->write(params);
}

// ---- What it is called ----

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

rktl::String CameraCmd::getCommandDescription() const
{
    rktl::String const camera = "[" + getCameraName(false) + "]";
    switch (getCommandSubType()) {
    case addCamera:
        return "Add camera " + camera;
    case removeCamera:
        return "Remove camera " + camera;
    case setCamera:
        return "Set camera " + camera;
    case renameCamera:
        return "Rename camera " + camera + " to [" + getNewName() + "]";
    case disableCamera:
        return "Disable camera " + camera;
    case enableCamera:
        return "Enable camera " + camera;
    default:
        return "";
    }
}

void CameraCmd::getCommandAttributes(rksl::StringMap<rktl::String>& attributes) const
{
    MeridaneAddress const address{rktl::url(getURL())};
    if (address.hasGUID(MeridaneAddress::cameraLevel))
        attributes["camera-guid"] = address.getGUID(MeridaneAddress::cameraLevel).toString();
}
