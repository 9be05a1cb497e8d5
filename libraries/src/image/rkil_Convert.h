#pragma once

#include "image/rkil_FlatImage.h"
#include "image/rkil_Image.h"

namespace rkil {

class ImageJPEG;
class ImagePNG;

/// Turns an image of any class into one of the class T: FlatImage<1>, FlatImage<4>, ImageJPEG, ImagePNG, Image<PixelRGB>,
/// Image<PixelGray>, or ImageBase, which stands for whatever class target really is. Of a MultiImage the form is taken that T
/// can be made from most directly.
///
/// False where a codec would be needed, with target as it was, or there is no memory. Throws rktl::Exception "Conversion not
/// defined." when no way leads from the one class to the other, a MultiImage without a picture included, and what the single
/// step throws, for a source without pixels above all.
template <class T> bool convert(ImageBase const& source, T& target);

template <> bool convert(ImageBase const& source, FlatImage<1>& target);
template <> bool convert(ImageBase const& source, FlatImage<4>& target);
template <> bool convert(ImageBase const& source, ImageJPEG& target);
template <> bool convert(ImageBase const& source, ImagePNG& target);
template <> bool convert(ImageBase const& source, Image<PixelRGB>& target);
template <> bool convert(ImageBase const& source, Image<PixelGray>& target);
template <> bool convert(ImageBase const& source, ImageBase& target);

} // namespace rkil
