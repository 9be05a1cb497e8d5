#pragma once

#include "BaseClasses/Object.h"
#include "math/rkml_BoundingBox.h"
#include "math/rkml_ColorHistogram.h"
#include "math/rkml_RunningAvg.h"

struct rk_image;

/// What the tracking stage learns of an object beyond its track: the colours of its halves and of all of it, and how uniform
/// it looks. Keeps running values, and writes what it knows into the object's attributes.
class AdvancedFeatures {
public:
    /// colour: four channels. mask: null, or one channel of its size: pixels that are not 0 count. box: clipped to the image.
    void learnColours(rk_image const& colour, rk_image const* mask, rkml::BoundingBox<int> const& box, Object& object);

    /// gray: one channel.
    void learnUniformity(rk_image const& gray, rkml::BoundingBox<int> const& box, Object& object);

private:
    enum Area { upper, lower, left, right, whole, areas };

    static void fillColors(rkml::ColorHistogram const& histogram, rktl::String const& name, Object& object);

    rkml::ColorHistogram mHistograms[areas];
    bool mHasColours = false;
    rkml::RunningAvg<float> mUniformity{0.15f, 0.85f};
};
