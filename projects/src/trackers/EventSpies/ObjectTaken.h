#pragma once

#include "image/rk_image.h"
#include "image/rk_sobel.h"
#include "math/rk_bbox.h"
#include "math/rkml_Histogram.h"
#include "math/rkml_Mask2d.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_String.h"

#include <cstdint>
#include <vector>

/// Guards a part of the picture, the asset: learns how it looks and tells when the look changes and when it comes back.
///
/// The box around the asset's outline is cut into cells, 4 by 4 of them in a large one and of 16 pixels in a small one. Each
/// cell keeps a histogram of its values, brightness or colour, within the outline, and one of the directions of its edges,
/// weighted by their strength. Every picture is compared with these by the L1 distance of the shares. A cell learns from its
/// first 11 pictures whatever they show, later from those that look like it. Not thread-safe.
class ObjectTaken {
public:
    enum Result {
        failed = 0,  ///< getMessage says why
        nothing = 1, ///< also while there is too little to compare
        changed = 2,
        returned = 3, ///< after a change; all is learned anew from here on
    };

    ObjectTaken();
    virtual ~ObjectTaken();
    /// Sensitivity and outline; what was learned stays behind.
    ObjectTaken(ObjectTaken const& other);
    ObjectTaken& operator=(ObjectTaken const& other);

    /// The score, from 0 for another thing to 1 for the same, below which the asset counts as changed.
    float getSensitivity() const { return mSensitivity; }
    /// False, and as before, for what does not lie from 0 to 1.
    bool setSensitivity(float sensitivity);
    /// Normalised or in pixels. A change forgets what was learned.
    rkml::Polygon2D<float> const& getRegion() const { return mRegion; }
    void setRegion(rkml::Polygon2D<float> const& region);

    /// Compares a picture with what was learned, and learns. time: of the picture; 0 is taken for no time. gray: one channel.
    /// confidence: becomes that of a change or a return, 0 to 1, otherwise 0.
    /// Throws rktl::Exception when pictures with colour and without follow one another.
    Result process(rktl::ElapsedTime const& time, rk_image const& gray, float& confidence);
    /// colour: four channels of the same size; an empty image for none.
    Result process(rktl::ElapsedTime const& time, rk_image const& gray, rk_image const& colour, float& confidence);

    /// Lays the outline and the cells out for pictures of that size. What was learned is gone.
    void resize(unsigned int width, unsigned int height);
    /// Whether the outline, as resize laid it out, is large enough to compare: 16 by 16 pixels. One that is not scores 0.
    bool hasCells() const { return !mSubRegions.empty(); }
    /// Forgets what was learned.
    void reset();

    /// Of the last failure, or the figures of the last change.
    rktl::String const& getMessage() const { return mMessage; }
    /// The outline in pixels of the picture size, 1 within.
    rkml::Mask2D<int> const& getMask() const { return mMask; }

private:
    struct SubRegion {
        explicit SubRegion(rk_bbox const& box);

        rkml::Histogram mValueHistogram;
        rkml::Histogram mEdgeHistogram;
        rk_bbox mBox; // in pixels of the picture
        uint32_t mFrames = 0;
    };

    Result fail(rktl::String const& message);
    void drawMask(rkml::Polygon2D<int> const& outline, unsigned int width, unsigned int height);
    void layOutCells(unsigned int width, unsigned int height);
    bool compareCells(rk_image const& gray, rk_image const& colour, float& value, float& edge);
    Result judge(rktl::ElapsedTime const& time, float value, float edge, float& confidence);
    void fillHistogram(rkml::Histogram& histogram, rk_bbox const& box, rk_image const& image) const;
    void fillHistogram(rkml::Histogram& histogram, rk_bbox const& box, std::vector<rk_magnitude> const& gradients) const;

    float mSensitivity = 0.5f;
    rkml::Polygon2D<float> mRegion;
    rk_bbox mRegionBox = {}; // of the outline, cut to the picture
    std::vector<SubRegion> mSubRegions;
    rktl::String mMessage;
    rktl::ElapsedTime mChangeStart; // 0: no change
    rkml::Mask2D<int> mMask;
    rk_image mMaskImage = {};             // 255 within the outline; empty when resize has to run first
    rk_image mCropImage = {};             // the gray picture cut to mRegionBox
    std::vector<rk_magnitude> mGradients; // of mCropImage
    rkml::Histogram mFreshValues;         // of the cell under comparison; kept for their storage
    rkml::Histogram mFreshEdges;
};
