#pragma once

#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/LineCrossing.h"

/// Raises an event when an object has crossed a line, and extends it for as long as the object stands across. The object must
/// have come the minimum distance from where it was born and be of the minimum age. Zones have no effect.
class LineCrossingSpy : public FrameEventSpy, public LineCrossing<float> {
public:
    /// Without a line, so silent.
    LineCrossingSpy();

    /// segment: normalised or in pixels; one without length is ignored. minDistance: pixels.
    LineCrossingSpy(char const* name, char const* description, rkml::LineSegment2D<float> const& segment, int16_t minDistance);
    /// A copy takes the line, but no objects. A line without length leaves the present one.
    LineCrossingSpy(LineCrossingSpy const& other);
    LineCrossingSpy& operator=(LineCrossingSpy const& other);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    /// False also for a direction that is none; the line is then the old one.
    bool fromXML(char const* xml) override;
    LineCrossingSpy* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;

    /// Forgets all objects. A segment without length changes nothing else.
    virtual void setLineSegment(rkml::LineSegment2D<float> const& segment);

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;
    void onFrameResize(unsigned int width, unsigned int height) override;

private:
    TrippedObj enter(Sighting const& seen) const;
    void judge(TrippedObj& tripped, Sighting const& seen, ProcessFrame const& frame);
};
