#pragma once

#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/LineCrossingSpy.h"

#include <vector>

/// Times objects between two lines that lie a known distance apart, whichever they cross first, and raises an event for each
/// that was too fast, with its speed in words. The lines are spies of their own, with a least age of 1 second; the limits of
/// this spy have no effect.
class Speed : public FrameEventSpy, private EventSpy::Listener {
public:
    /// Without lines, so silent.
    Speed();
    /// segments: normalised or in pixels. speedLimit: miles or kilometres per hour. metric: 0 for miles and feet, else kilometres
    /// and metres. distance: between the lines, in feet or metres.
    Speed(char const* name, char const* description, rkml::LineSegment2D<float> const& segment1,
        rkml::LineSegment2D<float> const& segment2, unsigned short speedLimit, int metric, unsigned short distance);
    Speed(Speed const& other);
    Speed& operator=(Speed const& other);

    bool isMetric() const { return mMetric != 0; }
    int32_t getSpeedLimit() const { return mSpeedLimit; }
    int32_t getDistance() const { return mDistance; }
    /// What the distance takes at the limit: faster objects alarm. 0, so none does, where either is 0.
    rktl::ElapsedTime const& getMinTime() const { return mMinTime; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    Speed* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    /// Also makes this spy the listener of its lines.
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;

private:
    /// Positions in the stream at which an object has crossed the lines; 0 for not yet.
    struct Candidate {
        uint32_t mObjectId;
        uint32_t mFirstUid = 0; // of the line's event that told the time
        uint32_t mSecondUid = 0;
        rktl::ElapsedTime mFirstTime{};
        rktl::ElapsedTime mSecondTime{};
    };

    /// A line was crossed.
    void onEvent(Event const& event) override;
    Candidate& candidate(uint32_t objectId);
    void updateTimeParam();
    rktl::String speedText(rktl::ElapsedTime const& taken) const;

    int32_t mMetric = 0;
    rktl::Integer mDistance{0};
    rktl::Integer mSpeedLimit{55};
    rktl::ElapsedTime mMinTime;
    LineCrossingSpy mFirstLine;
    LineCrossingSpy mSecondLine;
    bool mIsFirst = false;              // whether it is the first line whose events come now
    std::vector<Candidate> mCandidates; // ascending by object id
};
