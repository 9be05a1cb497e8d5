#pragma once

#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <map>

/// Counts the objects in its zones, or watches them come and go.
///
/// Delta and Threshold count objects that are tracked, of one of the classes (if any are named) and within the largest size; a
/// changed count, or one above the limit, raises an event. NewObject and DeadObject watch objects that have been there for the
/// least age and have come further than the least distance: one that does, and one that did and is gone.
///
/// DeadObject holds one copy of a frame, without images, for each moment in which a living object qualified last.
class Activity : public FrameEventSpy {
public:
    enum Type : int32_t { none = -1, delta = 0, newObject = 1, deadObject = 2, threshold = 3 };

    /// Of no type: does nothing.
    Activity();
    /// maxActivity: the count above which threshold alarms. minDistance: pixels.
    Activity(char const* name, char const* description, Type type, unsigned int maxActivity, unsigned int minDistance);
    /// A copy has counted nothing yet.
    Activity(Activity const& other);
    Activity& operator=(Activity const& other);

    Type getType() const { return mType; }
    unsigned int getMaxActivity() const { return static_cast<unsigned int>(mMaxActivity.value); }

    /// "Delta", "NewObject", "DeadObject", "Threshold", or "Unknown".
    static rktl::String typeToString(Type const& type);
    /// The type of exactly that text, or none.
    static Type stringToType(char const* text);

    /// A copy of the frame, without its images, which all objects of a moment share.
    rktl::SmartPtr<Frame> const& getFramePtr(Frame const& frame) { return keep(frame); }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    Activity* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;

private:
    void countObjects(ProcessFrame const& frame);
    void watchObjects(ProcessFrame const& frame);
    void reportDead();
    uint32_t addCount(ProcessFrame const& frame, std::vector<uint32_t> const& ids, int32_t count, uint32_t uid, bool withFrame);
    bool isCounted(Sighting const& seen) const;
    bool isWatched(Sighting const& seen) const;
    bool isPlaced(Sighting const& seen) const;

    Type mType = none;
    rktl::Integer mMaxActivity{1};
    int32_t mLastCount = -1;                               // of the frame before; -1: there was none
    uint32_t mEventUid = 0;                                // of the running event of threshold
    std::map<uint32_t, rktl::SmartPtr<Frame>> mDeadFrames; // by object id, where it qualified last
};
