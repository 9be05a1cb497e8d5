#pragma once

#include "image/rkil_FlatImage.h"
#include "math/rkml_Polygon2d.h"
#include "streams/rksl_List.h"

namespace rkil {

/// A one-channel image drawn from polygons: one value inside of any of them, another outside of all. With the values that it
/// starts with it blanks what lies inside. It is drawn by resize and setMaskPolygons only; until there are polygons it is not
/// drawn at all, and its pixels are 0.
class MaskImage : public FlatImage<1> {
public:
    /// No size; 255 outside, 0 inside.
    MaskImage() = default;
    /// Throws rktl::Exception when there is no memory.
    MaskImage(unsigned int width, unsigned int height, unsigned char outsideValue, unsigned char insideValue);

    using FlatImage<1>::resize;
    /// Draws the mask in that size. False when there is no memory.
    bool resize(unsigned int width, unsigned int height) override;
    bool resize(unsigned int width, unsigned int height, unsigned char outsideValue, unsigned char insideValue);

    /// Takes a copy and draws. A polygon is in fractions of the image's size when all its coordinates lie from 0 to 1, else in
    /// pixels.
    void setMaskPolygons(rksl::List<rkml::Polygon2D<float>> const& polygons);

    /// Draws the mask; false, with the pixels as they were, when it is empty. Polygons of fewer than 3 points mark nothing.
    bool maskPolygons();

    /// True without pixels, and without polygons.
    bool empty() const override;

    /// target: becomes source AND mask, every byte of a pixel by the pixel's byte of the mask. target may be source.
    /// False, with nothing changed, when source has not the mask's size. N is 1 or 4.
    template <unsigned int N> bool maskImage(FlatImage<N> const& source, FlatImage<N>& target) const;

private:
    rkml::Polygon2D<unsigned int> inPixels(rkml::Polygon2D<float> const& polygon) const;

    unsigned char mOutsideValue = 255;
    unsigned char mInsideValue = 0;
    rksl::List<rkml::Polygon2D<float>> mPolygons;
};

extern template bool MaskImage::maskImage(FlatImage<1> const& source, FlatImage<1>& target) const;
extern template bool MaskImage::maskImage(FlatImage<4> const& source, FlatImage<4>& target) const;

} // namespace rkil
