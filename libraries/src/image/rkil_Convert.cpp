#include "image/rkil_Convert.h"

#include "image/rkil_Conversion.h"
#include "image/rkil_ImageJPEG.h"
#include "image/rkil_ImagePNG.h"
#include "image/rkil_MultiImage.h"
#include "misc/rktl_Exception.h"

namespace rkil {

namespace {

[[noreturn]] void noRoute(unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/image/rkil_Conversion", "rkil::Conversion", "Conversion not defined.", line);
}

/// The image as class T, or null when it is another.
template <class T> T const* as(ImageBase const& image)
{
    return dynamic_cast<T const*>(&image);
}

/// The picture of a flat image of any number of channels; null for another class.
rk_image const* asFlat(ImageBase const& image)
{
    if (auto const* const flat = as<FlatImage<4>>(image))
        return flat->getImage();
    if (auto const* const flat = as<FlatImage<3>>(image))
        return flat->getImage();
    if (auto const* const flat = as<FlatImage<1>>(image))
        return flat->getImage();
    return nullptr;
}

/// The form of image that holds a picture, wanted before other before the compressed one.
ImageBase const& bestForm(MultiImage const& image, MultiImage::Form wanted)
{
    auto const other = wanted == MultiImage::flatColour ? MultiImage::flatGray : MultiImage::flatColour;
    for (MultiImage::Form const form : {wanted, other, MultiImage::compressed})
        if (ImageBase const* const picture = image.getForm(form))
            return *picture;
    noRoute();
}

} // namespace

template <> bool convert(ImageBase const& source, FlatImage<1>& target)
{
    if (rk_image const* const flat = asFlat(source))
        return flat->channels == 1 ? rk_copy_image(flat, target.getImage()) : color2gray(*flat, *target.getImage());
    if (auto const* const colour = as<Image<PixelRGB>>(source))
        return color2gray(*colour, *target.getImage());
    if (auto const* const gray = as<Image<PixelGray>>(source))
        return flattenGray(*gray, *target.getImage());
    if (auto const* const jpeg = as<ImageJPEG>(source))
        return jpeg->toFlatImage(*target.getImage());
    if (auto const* const multi = as<MultiImage>(source))
        return convert(bestForm(*multi, MultiImage::flatGray), target);
    if (auto const* const png = as<ImagePNG>(source))
        return png->toFlatImage(*target.getImage());
    noRoute();
}

template <> bool convert(ImageBase const& source, FlatImage<4>& target)
{
    if (rk_image const* const flat = asFlat(source)) {
        if (flat->channels == 3)
            return rk_inflate_image(flat, target.getImage());
        return flat->channels == 4 ? rk_copy_image(flat, target.getImage()) : gray2color(*flat, *target.getImage());
    }
    if (auto const* const colour = as<Image<PixelRGB>>(source))
        return flattenColor(*colour, *target.getImage());
    if (as<Image<PixelGray>>(source)) {
        FlatImage<1> gray;
        return convert(source, gray) && gray2color(*gray.getImage(), *target.getImage());
    }
    if (auto const* const jpeg = as<ImageJPEG>(source))
        return jpeg->toFlatImage(*target.getImage());
    if (auto const* const multi = as<MultiImage>(source))
        return convert(bestForm(*multi, MultiImage::flatColour), target);
    if (auto const* const png = as<ImagePNG>(source))
        return png->toFlatImage(*target.getImage());
    noRoute();
}

template <> bool convert(ImageBase const& source, ImageJPEG& target)
{
    if (rk_image const* const flat = asFlat(source))
        return target.fromFlatImage(*flat);
    if (auto const* const pixels = as<PixelImage>(source))
        return target.fromPixelImage(*pixels);
    if (auto const* const jpeg = as<ImageJPEG>(source)) {
        target = *jpeg;
        return true;
    }
    if (auto const* const multi = as<MultiImage>(source))
        return multi->toJPEG(target);
    noRoute();
}

template <> bool convert(ImageBase const& source, ImagePNG& target)
{
    if (rk_image const* const flat = asFlat(source))
        return target.fromFlatImage(*flat);
    if (auto const* const multi = as<MultiImage>(source))
        return convert(bestForm(*multi, MultiImage::flatColour), target);
    noRoute();
}

template <> bool convert(ImageBase const& source, Image<PixelRGB>& target)
{
    if (rk_image const* const flat = asFlat(source))
        return flat->channels == 1 ? gray2color(*flat, target) : inflateColor(*flat, target);
    if (auto const* const colour = as<Image<PixelRGB>>(source)) {
        target = *colour;
        return true;
    }
    if (as<Image<PixelGray>>(source)) {
        FlatImage<1> gray;
        return convert(source, gray) && gray2color(*gray.getImage(), target);
    }
    if (auto const* const jpeg = as<ImageJPEG>(source))
        return jpeg->toPixelImage(target);
    if (auto const* const multi = as<MultiImage>(source))
        return convert(bestForm(*multi, MultiImage::flatColour), target);
    noRoute();
}

template <> bool convert(ImageBase const& source, Image<PixelGray>& target)
{
    if (rk_image const* const flat = asFlat(source))
        return flat->channels == 1 ? inflateGray(*flat, target) : color2gray(*flat, target);
    if (auto const* const colour = as<Image<PixelRGB>>(source))
        return color2gray(*colour, target);
    if (auto const* const gray = as<Image<PixelGray>>(source)) {
        target = *gray;
        return true;
    }
    if (auto const* const jpeg = as<ImageJPEG>(source))
        return jpeg->toPixelImage(target);
    if (auto const* const multi = as<MultiImage>(source))
        return convert(bestForm(*multi, MultiImage::flatGray), target);
    noRoute();
}

template <> bool convert(ImageBase const& source, ImageBase& target)
{
    if (auto* const gray = dynamic_cast<FlatImage<1>*>(&target))
        return convert(source, *gray);
    if (auto* const colour = dynamic_cast<FlatImage<4>*>(&target))
        return convert(source, *colour);
    if (auto* const colour = dynamic_cast<Image<PixelRGB>*>(&target))
        return convert(source, *colour);
    if (auto* const gray = dynamic_cast<Image<PixelGray>*>(&target))
        return convert(source, *gray);
    if (auto* const jpeg = dynamic_cast<ImageJPEG*>(&target))
        return convert(source, *jpeg);
    if (auto* const multi = dynamic_cast<MultiImage*>(&target)) {
        *multi = source;
        return true;
    }
    if (auto* const png = dynamic_cast<ImagePNG*>(&target))
        return convert(source, *png);
    noRoute();
}

} // namespace rkil
