#pragma once

#include "image/rkil_FlatImage.h"
#include "math/rk_bbox.h"
#include "misc/rktl_Double.h"
#include "trackers/EventSpies/FrameEventSpy.h"

/// Raises an event when too much of its regions is foreground for too long. Foreground is what is bright in "Processed Image" or
/// in "Stationary Object Processed". Zones, classes and limits of objects have no effect.
class CrowdDensity : public FrameEventSpy {
public:
    /// Without regions, so silent.
    CrowdDensity();
    /// waitTime: how long a crowd must last, and how long it must be gone. maxDensity: as for setMaxDensity.
    CrowdDensity(char const* name, char const* description, float maxDensity, rktl::ElapsedTime const& waitTime);
    CrowdDensity(CrowdDensity const& other);
    CrowdDensity& operator=(CrowdDensity const& other);

    /// Share of the regions' pixels that may be foreground.
    double getMaxDensity() const { return mMaxDensity; }
    /// False, and as before, outside of 0 to 1.
    bool setMaxDensity(float density);
    rktl::ElapsedTime const& getWaitTime() const { return mWaitTime; }
    /// Normalised or in pixels; one of fewer than three points has no pixels.
    rksl::List<rkml::Polygon2D<float>> const& getRegions() const { return mRegions; }
    void setRegions(rksl::List<rkml::Polygon2D<float>> const& regions);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    CrowdDensity* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;
    void onFrameResize(unsigned int width, unsigned int height) override;

private:
    void drawRegion(rkml::Polygon2D<int> const& region);
    unsigned char const* foreground(ProcessFrame const& frame, char const* name) const;
    bool isCrowded(unsigned char const* one, unsigned char const* other) const;

    rktl::Double mMaxDensity{0.35};
    rktl::ElapsedTime mWaitTime;
    rksl::List<rkml::Polygon2D<float>> mRegions;
    rkil::FlatImage<1> mRegionImage;      // 255 in the regions, 0 elsewhere
    uint32_t mRegionPixels = 0;           // how many are 255
    rk_bbox mBounds = {};                 // of them
    std::vector<unsigned char> mMask;     // mRegionImage within the bounds, in one row
    rktl::ElapsedTime mStartPosition{-1}; // when the present crowd began; negative: there is none
    rktl::ElapsedTime mLastSeen;          // when the density was last above the limit
    uint32_t mEventUid = 0;               // of the running event
};
