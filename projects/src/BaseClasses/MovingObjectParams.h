#pragma once

#include "BaseClasses/ProcessParams.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_Integer.h"
#include "streams/rksl_List.h"

namespace rkxml {
class DomIterator;
}

/// Parameters of the detection of moving regions, and how sensitivities become thresholds. The element of each field in XML
/// is called as said. Binary form: the fields as framed objects, in this order.
class MovingObjectParams : public ProcessParams {
public:
    enum NoiseLevel : int32_t { off, low, medium, high, automatic };
    enum KernelType : int32_t { square, ellipse };

    MovingObjectParams();

    rktl::Double mMotionSensitivity = 0.5;              ///< "motion-sensitivity": 0 to 1
    rktl::Double mSensitivity = 0.5;                    ///< "sensitivity": 0 to 1
    rktl::Double mCsThresh = -1.0;                      ///< "cs-thresh"
    rktl::Integer mImageQLen = 3;                       ///< "image-q-len": difference masks kept
    rktl::Integer mSkippedFrames = 4;                   ///< "skipped-frames"
    rktl::Integer mObjectFilterWidth = 11;              ///< "object-filter", "width": pixels
    rktl::Integer mObjectFilterHeight = 11;             ///< "object-filter", "height": pixels
    rktl::Double mGradientMultiplier = 1.0;             ///< "object-filter", attribute "gradient-multiplier"
    rktl::Integer mKernelType = ellipse;                ///< "kernel", attribute "type"
    rktl::Integer mKernelWidth = 11;                    ///< "kernel", "width": pixels
    rktl::Integer mKernelHeight = 11;                   ///< "kernel", "height": pixels
    rksl::List<rkml::Polygon2D<float>> mExclusionZones; ///< "exclusion-zones"
    rktl::Integer mShadowRemoval = 0;                   ///< "shadow-removal", attribute "enabled": flag
    rktl::Integer mFilterNoiseLevel = automatic;        ///< "filter-noise", attribute "level"
    rktl::Integer mColumns = 2;                         ///< "filter-noise", "columns"
    rktl::Integer mRows = 2;                            ///< "filter-noise", "rows"

    /// The sensitivity at which the motion detector works with this threshold of gray levels: 1 at 10 and below, 0 at 75
    /// and above.
    static double sensitivityFromThreshold(int threshold);

    /// The share of background above which a pixel counts as background, 0.5 to 1, for a sensitivity from 0 to 1; and back.
    static float getBackgroundThreshold(float sensitivity);
    static float normalizeSensitivity(float threshold);

    /// A queue of masks that spans about a fifth of a second, of at least 2.
    void setImageQLenFromFps(double fps);

    rksl::MemIOStream binSerialize() const override;
    bool binUnserialize(rksl::MemIOStream const& stream) override;
    rktl::String xmlSerialize() const override;
    /// Fields that the text does not name keep their value, but zones, gradient multiplier and shadow removal, which go back
    /// to their defaults.
    bool xmlUnserialize(rktl::String const& xml) override;

private:
    void readElement(rkxml::DomIterator const& element);
    void readObjectFilter(rkxml::DomIterator const& element);
    void readNoiseFilter(rkxml::DomIterator const& element);
};
