#pragma once

#include "math/rkml_Mask2d.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectBook.h"

/// Raises an event when an object that began wholly outside the protected regions has come into them, and extends it while the
/// object stays. An object is judged from its second processed frame on, and a last time when it has gone. Zones have no
/// effect.
class Perimeter : public FrameEventSpy {
public:
    /// Without regions, so silent.
    Perimeter();
    /// A copy takes the rule, but no objects.
    Perimeter(Perimeter const& other);
    Perimeter& operator=(Perimeter const& other);

    /// Normalised or in pixels, each region for itself.
    rksl::List<rkml::Polygon2D<float>> const& getRegions() const { return mRegions; }
    void setRegions(rksl::List<rkml::Polygon2D<float>> const& regions);
    /// The least share of the object's box that must lie in the regions, 0 to 1.
    double getIntrusion() const { return mIntrusion; }
    void setIntrusion(double share) { mIntrusion = share; }

    /// Whether the object is an intruder as it stands.
    bool checkObject(Object const& object) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    Perimeter* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;
    void onFrameResize(unsigned int width, unsigned int height) override;

private:
    bool check(Sighting const& seen) const;

    rksl::List<rkml::Polygon2D<float>> mRegions;
    rkml::Mask2D<bool> mRegionMask; // the part of the regions that lies in the frame
    double mIntrusion = 0.5;
    // Of the last processed frame: whether the object intruded, so that it alarms a last time when the next one lacks it. That is
    // all that has to be known of it: copies of whole objects would cost more than the rule.
    ObjectBook<bool> mLastObjects;
};
