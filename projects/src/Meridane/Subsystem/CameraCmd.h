#pragma once

#include "BaseClasses/CameraParams.h"
#include "Meridane/Subsystem/MeridaneCmd.h"
#include "video/rkvl_PTZCmd.h"

class SummaryQuery;

/// Commands to manage the cameras of a machine. Family 3002. Those that change something ask for an audit.
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

    using MeridaneCmd::MeridaneCmd;

    /// For the sub types without objects.
    CameraCmd(rktl::url const& url, SubType subType, bool audit);

    // ---- What a client sends. url names the camera or, where that is all that counts, the machine. Each throws for a url that
    // does not name what the command needs ----

    /// params: by camera name.
    static CameraCmd load(rktl::url const& url, rksl::StringMap<CameraParams> const& params);
    static CameraCmd reload(rktl::url const& url);
    /// params have to be those of the camera that url names. flag travels behind them.
    static CameraCmd add(rktl::url const& url, CameraParams const& params, bool flag);
    static CameraCmd remove(rktl::url const& url);
    static CameraCmd set(rktl::url const& url, CameraParams const& params);
    /// stored: the XML form of params, which get a new revision. Throws when it is none.
    static CameraCmd set(rktl::url const& url, rktl::String const& stored, rktl::TimeStamp const& revision);
    /// newName: not empty.
    static CameraCmd rename(rktl::url const& url, rktl::String const& newName);
    static CameraCmd getParams(rktl::url const& url);
    static CameraCmd query(rktl::url const& url);
    static CameraCmd disable(rktl::url const& url);
    static CameraCmd enable(rktl::url const& url);
    static CameraCmd canAdd(rktl::url const& url, CameraParams const& params);
    static CameraCmd getInfo(rktl::url const& url);
    static CameraCmd getSummaries(rktl::url const& url, bool flag);
    /// Of all cameras on all machines, as far as the query does not say.
    static CameraCmd querySummaries(SummaryQuery const& query);
    static CameraCmd countSummaries(SummaryQuery const& query);
    static CameraCmd getImage(rktl::url const& url);
    static CameraCmd ptz(rktl::url const& url, rkvl::PTZCmd const& command);
    static CameraCmd queryCameraStatus(rktl::url const& url);
    static CameraCmd queryEnrollmentCameras(rktl::url const& url);
    static CameraCmd move(rktl::url const& url, rktl::String const& target);

    // ---- What a command carries. Each throws on the sub types that have no such thing, and when it is not there ----

    CameraParams getParams() const;                                 ///< set, add
    bool getBoolean() const;                                        ///< add, summaries
    rktl::String getNewName() const;                                ///< rename, move
    void getCameraMap(rksl::StringMap<CameraParams>& params) const; ///< load
    void getQuery(SummaryQuery& query) const;                       ///< summaries asked for by a query
    rkvl::PTZCmd getPTZCmd() const;                                 ///< ptz
    /// set: gives the params that the command and its copies carry a new revision.
    void setRevision(rktl::TimeStamp const& revision);

    rktl::String getCommandName() const override;
    rktl::String getCommandSubName(unsigned int subType) const override;
    rktl::String getCommandDescription() const override;
    /// The camera's UUID, where the url has one, as "camera-guid".
    void getCommandAttributes(rksl::StringMap<rktl::String>& attributes) const override;

private:
    bool isOneOf(std::initializer_list<SubType> subTypes) const;
};
