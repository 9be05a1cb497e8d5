#pragma once

#include "BaseClasses/AdaptiveBackground.h"
#include "BaseClasses/ObjectMap.h"
#include "BaseClasses/ObjectTrackerParams.h"
#include "BaseClasses/Tracker.h"
#include "BaseClasses/VideoProcess.h"
#include "detection/rk_object_list.h"
#include "math/rk_geometry.h"
#include "math/rk_running_avg.h"
#include "misc/rktl_TimeQueue.h"
#include "plugin/rkpl_PluginPtr.h"
#include "sync/rkst_Vault.h"
#include "trackers/ObjectTrackerLib/AdvancedFeatures.h"

#include <atomic>
#include <map>
#include <vector>

struct rk_image;
struct rk_object;
struct rk_vertex;
namespace rkil {
class MultiImage;
}

/// The tracking stage. It links the regions of each frame to tracks, one list of tracks for each kind of region, and keeps
/// what the rest of the system sees of them: the objects. Objects that have ended wait in limbo for a while; a young object
/// that appears near where one of them ended, and with its colours, continues it.
///
/// Frames come on the frame thread, which alone touches the lists of tracks; the operations of Tracker come from any
/// thread. Lock order: living objects, then limbo. Each lock is waited for at most 15 s.
class ObjectTracker : public Tracker, public VideoProcess {
public:
    ObjectTracker();
    ~ObjectTracker() noexcept override;
    ObjectTracker(ObjectTracker const&) = delete;
    ObjectTracker& operator=(ObjectTracker const&) = delete;

    bool supports(char const* wanted, rkpl::Plugin** result) override;
    void release() override { delete this; }

    bool lock(bool locked) override;
    /// The track goes on, but the object stays removed.
    bool removeObject(uint32_t id) override;
    bool getObjects(ObjectMap& objects) override;
    uint32_t getNextID() override { return mNextId; }
    void setNextID(uint32_t id) override { mNextId = id; }

    /// false also empties the limbo.
    void allowResurrection(bool allow);
    /// Empties the limbo; at or below 0 nothing will wait there.
    void setResurrectionWindow(rktl::ElapsedTime const& window);

    /// Forgets all tracks and objects; ids are not used again.
    void reset();

    rktl::String getProcessType() const override;
    ProcessParams getDefaultParameters() const override;
    bool setProcesses(std::list<rkpl::PluginPtr<VideoProcess>> const& processes) override;
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override;
    void resetProcess() override;

protected:
    bool onProcessFrame(ProcessFrame& frame) override;
    bool onSetParameters(ProcessParams const& params) override;
    void onFrameResize(unsigned int width, unsigned int height, double scale) override;

private:
    using ObjectsPtr = rkst::VaultSafePointer<ObjectMap>;
    using Limbo = rktl::TimeQueue<Object>;
    using LimboPtr = rkst::VaultSafePointer<Limbo>;
    using Lists = std::map<rktl::String, rk_object_list>;
    static constexpr unsigned int lockLimit = 15000; // ms

    rk_object_list& makeList(rktl::String const& name, bool isStatic);
    void freeLists();

    // The steps of a frame.
    void trackRegions(
        ProcessFrame& frame, rktl::String const& name, rk_object_list& list, rkil::MultiImage const& image, rk_image const* mask);
    void process(rk_object_list& list, rkil::MultiImage const& image, rk_image const* mask, rk_vertex* vertices,
        unsigned int count, rktl::ElapsedTime const& time);
    void updateObjects(ObjectsPtr objects, ProcessFrame const& frame);
    void updateObject(Object& object, rk_object const& record, rk_object_list const& list, ProcessFrame const& frame);
    bool isStillValid(
        uint32_t id, float motionScore, rktl::ElapsedTime const& now, rktl::NodeMap<uint32_t, rktl::ElapsedTime>& moving) const;
    void removeFalseObjects(ObjectsPtr objects, ProcessFrame& frame);
    void judgeObject(Object& object, ObjectMap const& objects, ProcessFrame& frame, rk_image& activity,
        std::map<rkml::BoundingBox<int>, float>& judged);
    static bool checkOverlap(rkml::BoundingBox<int> const& box, ObjectMap const& objects, rktl::String const& type);
    void resurrectObjects(ObjectsPtr objects, rktl::TimeStamp const& time);
    Limbo::iterator findAncestor(Object const& object, Limbo& limbo, double& score) const;
    bool resurrectObject(uint32_t id, Object const& ancestor, ObjectsPtr objects);
    void cleanObjects(ObjectsPtr objects, rktl::TimeStamp const& time);
    ObjectMap::iterator purgeObject(uint32_t id, ObjectsPtr objects, LimboPtr limbo);

    Lists mLists; // by the name of the regions
    rkst::Vault<ObjectMap> mObjects;
    rkst::Vault<Limbo> mLimbo;
    rktl::NodeMap<uint32_t, rktl::ElapsedTime> mLastMoving; // stream position at which each object last moved
    std::atomic<bool> mLocked = false;
    rkpl::PluginPtr<AdaptiveBackground> mBackground;
    std::map<uint32_t, AdvancedFeatures> mAdvanced;
    ObjectTrackerParams mParams;
    std::atomic<bool> mAllowResurrection = false;
    std::atomic<uint32_t> mNextId = 1;
    std::vector<rk_segment> mOcclusions; // pixels of the processed frame
    rktl::NodeMap<uint32_t, rk_running_avg> mFalseScores;
};
