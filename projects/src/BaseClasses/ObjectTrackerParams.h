#pragma once

#include "BaseClasses/ProcessParams.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "streams/rksl_List.h"

#include <list>

struct rk_segment;

/// Parameters of ObjectTracker. The element of each field in XML is called as said; a flag is on by the presence of its
/// empty element. Binary form: the fields as framed objects, in this order.
class ObjectTrackerParams : public ProcessParams {
public:
    using Zones = rksl::List<rkml::Polygon2D<float>>;

    ObjectTrackerParams();

    /// Takes over what the params of the stage say; false when their XML is none.
    bool read(ProcessParams const& params) { return assignFrom(params); }

    rktl::ElapsedTime mResurrectionWindow;    ///< "resurrection-window": how long purged objects wait; -15 s, at or below 0 none
    rktl::Integer mResurrectionDistance = 25; ///< "resurrection-distance": pixels; closer than this
    rktl::Double mResurrectionConfidence = 0.6; ///< "resurrection-confidence": colours more alike than this
    rktl::Integer mRemoveFalseObjects = 0;      ///< "remove-false-objects": flag
    rktl::Integer mAdvancedHistograms = 0;      ///< "advanced-histograms": flag
    rktl::ElapsedTime mInvalidWindow;           ///< "invalid-window": how long an object may stand still; 10 s
    rktl::ElapsedTime mDeferTime;               ///< "defer-time": how long an unmatched object waits; 1 s
    Zones mOcclusionZones;                      ///< "occlusion-zones": their sides count as edges of the scene
    rktl::Integer mAdvancedObjectFeatures = 0;  ///< "advanced-object-features": flag
    rktl::Integer mAlwaysUpdateHistograms = 0;  ///< "always-update-histograms": flag
    rktl::Integer mMinTrackLength = 5;          ///< "min-track-length": matched frames until an object is no longer nascent
    rktl::Integer mMaxTrackMerges = 5;          ///< "max-track-merges": objects that may share a blob

    rksl::MemIOStream binSerialize() const override;
    /// False, with the fields as before, for another stream.
    bool binUnserialize(rksl::MemIOStream const& stream) override;
    rktl::String xmlSerialize() const override;
    /// Fields that the text does not name keep their value, but the zones and the flags, which it clears.
    bool xmlUnserialize(rktl::String const& xml) override;

    /// segments: becomes the sides of the zones in pixels of a frame of width by height, times scale; each normalised vertex
    /// is scaled, each other one stays. False, and as before, for a width or height of 0. Throws rktl::Exception for a scale
    /// that is not positive, and for a zone of fewer than 3 points.
    static bool generateOcclusions(
        unsigned int width, unsigned int height, double scale, Zones const& zones, std::list<rk_segment>& segments);

private:
    void readFields(rksl::MemIOStream stream);
    void clearFlags();
    void readElement(rktl::String const& name, char const* xml);
};
