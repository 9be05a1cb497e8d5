#pragma once

#include "image/rkil_Image.h"
#include "math/rkml_BoundingBox.h"

struct rk_image;

/// Pixel arithmetic between colour spaces and image layouts.
///
/// Four channels are blue, green, red and a fourth byte. Three channels are the same where a name says bgr; for color2gray and in
/// pixel images they are red, green, blue. A target of another size or number of channels is made anew; source and target may
/// be one image where they have the same channels. All give true, or false when there is no memory, a part does not lie in
/// the source, or one image should become another layout of itself. All throw rktl::Exception for a source without pixels or
/// with a number of channels that is not named here.
namespace rkil {

/// 3 or 4 channels to 1, weights in percent, rounded down. Three channels are weighted as red, green, blue.
bool color2gray(rk_image const& source, rk_image& target);
bool color2gray(rk_image const& source, Image<PixelGray>& target);
bool color2gray(Image<PixelRGB> const& source, rk_image& target);
bool color2gray(Image<PixelRGB> const& source, Image<PixelGray>& target);

/// 1 channel to 4, the fourth 255.
bool gray2color(rk_image const& source, rk_image& target);
bool gray2color(rk_image const& source, Image<PixelRGB>& target);

/// The following keep the fourth byte, where there is one.

/// To Y, U, V as PixelYUV.
bool bgr2yuv(rk_image const& source, rk_image& target);

/// Hue, saturation, value, each scaled to a byte (rk_hsv).
bool bgr2hsv(rk_image const& source, rk_image& target);
bool hsv2bgr(rk_image const& source, rk_image& target);

/// CIE 1976 L*a*b* of linear RGB (ITU-R BT.709 primaries, D65), L scaled to 0..255, a and b around 128; 127 on the way back.
bool bgr2lab(rk_image const& source, rk_image& target);
bool lab2bgr(rk_image const& source, rk_image& target);

/// 1 channel to 4: L, 0, 0, 255.
bool gray2lab(rk_image const& source, rk_image& target);

/// 3 or 4 channels to 1: L.
bool lab2gray(rk_image const& source, rk_image& target);

/// Pixel image to 4 channels (the fourth 255) or 1. part: takes only this part, which must lie in the source.
bool flattenColor(Image<PixelRGB> const& source, rk_image& target, rkml::BoundingBox<int> const* part = nullptr);
bool flattenGray(Image<PixelGray> const& source, rk_image& target, rkml::BoundingBox<int> const* part = nullptr);

/// 3 (red, green, blue) or 4 channels, or 1, to a pixel image.
bool inflateColor(rk_image const& source, Image<PixelRGB>& target);
bool inflateGray(rk_image const& source, Image<PixelGray>& target);

} // namespace rkil
