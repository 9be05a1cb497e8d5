#pragma once

#include "BaseClasses/ProcessParams.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"
#include "misc/rktl_UUID.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemberRecord.h"

/// The settings of one camera: what it is called, where its video comes from, and the parameters of the stages that work on
/// it. A mode tells for which of several ways of running a stage is meant; an empty one means any. A plain value.
///
/// XML form: name, port and guid are attributes, the rest are elements; port only when above 0, guid only when valid, scale
/// only when not 1.
class CameraParams : public rksl::MemberRecord, public rktl::Attributes {
public:
    CameraParams() = default;
    CameraParams(rktl::String const& name, rktl::UUID const& guid, rktl::TimeStamp const& revision);

    rktl::String const& getName() const { return mName; }
    void setName(rktl::String const& name) { mName = name; }
    /// 0: none.
    int32_t getPort() const { return mPort; }
    void setPort(int32_t port) { mPort = port; }
    rktl::UUID const& getGUID() const { return mGuid; }
    void setGUID(rktl::UUID const& guid) { mGuid = guid; }
    /// When these settings were made.
    rktl::TimeStamp const& getRevision() const { return mRevision; }
    void setRevision(rktl::TimeStamp const& revision) { mRevision = revision; }
    int32_t getGPUDevice() const { return mGPUDevice; }
    void setGPUDevice(int32_t device) { mGPUDevice = device; }
    double getScale() const { return mScale; }
    void setScale(double scale) { mScale = rktl::Double(scale); }
    rktl::String const& getVideoURL() const { return mVideoURL; }
    void setVideoURL(rktl::String const& url) { mVideoURL = url; }

    // ---- Stages, in their order; "of that mode" here includes those of the empty mode where the text says so ----

    rksl::List<ProcessParams> const& getProcesses() const { return mProcesses; }
    void setProcesses(rksl::List<ProcessParams> const& processes) { mProcesses = processes; }
    void clearProcesses() { mProcesses.clear(); }

    /// Whether a stage has exactly this mode.
    bool hasProcessMode(rktl::String const& mode) const;
    /// Of the first stage of that name and exact mode, an empty mode asking for any; false when there is none.
    bool isProcessEnabled(rktl::String const& name, rktl::String const& mode) const;
    /// In front of the first stage called before; at the end when that is empty or there is none.
    void addProcess(ProcessParams const& params, rktl::String const& before);
    /// All stages of that name and exact mode; an empty mode takes any.
    void removeProcess(rktl::String const& name, rktl::String const& mode);
    /// In the place of the first stage of its name and mode, all of which go; at the end when there is none. An empty mode
    /// on either side fits any.
    void updateProcess(ProcessParams const& params);
    /// Takes all of these stages, each in the place of the first one it updates, the others at the end.
    void mergeProcesses(rksl::List<ProcessParams> const& processes);
    /// Keeps the stages of this or the empty mode.
    void restrictProcessMode(rktl::String const& mode);

    // ---- Log ----

    rktl::String const& getLogDirectory() const { return mLogDirectory; }
    void setLogDirectory(rktl::String const& directory) { mLogDirectory = directory; }
    /// The log of that name, or the camera's own for an empty one; "" without a log directory.
    rktl::String getLogPath(rktl::String const& name) const;

    // ---- Pan, tilt and zoom, as the query of the video's URL says ----

    bool isPTZEnabled() const;
    /// After how long the camera returns home by itself; a span of -1 ms, all of its bits set, when the URL does not say.
    rktl::ElapsedTime getPTZTimeout() const;
    rktl::String getHomePosition() const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// False, and as before, when xml holds no element or one without children; what it does not name gets its default.
    bool fromXML(char const* xml) override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

protected:
    char const* getClassName() const override;

private:
    rktl::String mName;
    rktl::Integer mPort = 0;
    rktl::UUID mGuid;
    rktl::TimeStamp mRevision;
    rktl::Integer mGPUDevice = 0;
    rksl::List<ProcessParams> mProcesses;
    rktl::Double mScale{1.0};
    rktl::String mVideoURL;
    rktl::String mLogDirectory;
};
