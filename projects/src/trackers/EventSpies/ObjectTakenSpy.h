#pragma once

#include "misc/rktl_Countdown.h"
#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectTaken.h"

#include <cstdint>

/// Raises an event when the look of an asset changes while no object stands on it, extends it while the change lasts, and on
/// demand raises another one, "Replaced", when the asset is back. Zones, classes, sizes, age and distance have no effect.
/// While a frame says that the video pauses, and 2 s beyond, nothing is judged or learned.
class ObjectTakenSpy : public FrameEventSpy {
public:
    /// Without a region, so silent.
    ObjectTakenSpy();
    /// A copy takes the rule; it learns the asset anew.
    ObjectTakenSpy(ObjectTakenSpy const& other);
    ObjectTakenSpy& operator=(ObjectTakenSpy const& other);

    ObjectTaken const& getAsset() const { return mAsset; }
    /// As ObjectTaken::setSensitivity.
    bool setSensitivity(float sensitivity) { return mAsset.setSensitivity(sensitivity); }
    void setRegion(rkml::Polygon2D<float> const& region);
    bool getReplaceAlarm() const { return mReplaceAlarm != 0; }
    void setReplaceAlarm(bool alarm) { mReplaceAlarm = alarm ? 1 : 0; }

    /// Whether a moving, tracked object covers a part of the asset.
    bool hasOverlap(ObjectMap const& objects) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    ObjectTakenSpy* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;
    /// The event that runs goes on.
    void onFrameResize(unsigned int width, unsigned int height) override;

private:
    bool isPaused(Frame const& frame);
    ObjectTaken::Result lookAt(ProcessFrame const& frame, float& confidence);

    uint32_t mEventUid = 0;     // of the running event; 0: none
    rktl::Countdown mCountdown; // pause
    ObjectTaken mAsset;
    rktl::Integer mReplaceAlarm = 0;
};
