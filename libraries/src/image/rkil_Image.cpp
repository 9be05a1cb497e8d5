#include "image/rkil_Image.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"

#include <new>
#include <stdexcept>
#include <type_traits>

namespace rkil {

namespace {

[[noreturn]] void noForm(std::string const& operation)
{
    throw rktl::Exception("libraries/src/image/rkil_Image", "rkil::Image", operation + "() - not implemented.");
}

} // namespace

template <class P> Image<P>::Image(unsigned int width, unsigned int height)
{
    if (!resize(width, height))
        throw rktl::Exception("libraries/src/image/rkil_Image", "rkil::Image", "Image(...) - out of memory.");
}

template <class P> bool Image<P>::resize(unsigned int width, unsigned int height)
{
    if (width == mWidth && height == mHeight)
        return true;
    clear();
    uint64_t const count = uint64_t(width) * height;
    if (count > mPixels.max_size())
        return false;
    try {
        mPixels.resize(static_cast<size_t>(count));
    } catch (std::bad_alloc const&) {
        return false;
    }
    mWidth = width;
    mHeight = height;
    return true;
}

template <class P> void Image<P>::clear()
{
    BasicImage::clear();
    mPixels = {};
}

template <class P> unsigned int Image<P>::getTypeId() const
{
    if constexpr (std::is_same_v<P, PixelRGB>)
        return 703;
    else if constexpr (std::is_same_v<P, PixelYUV>)
        return 704;
    else
        return 705;
}

template <class P> rktl::String Image<P>::getTypeName() const
{
    return "rkil_Image";
}

template <class P> rktl::String Image<P>::toXML(char const*) const
{
    noForm("toXML");
}

template <class P> bool Image<P>::fromXML(char const*)
{
    noForm("fromXML");
}

template <class P> unsigned int Image<P>::getBinLength() const
{
    noForm("getBinLength");
}

template <class P> unsigned int Image<P>::toBin(unsigned char*) const
{
    noForm("toBin");
}

template <class P> unsigned int Image<P>::fromBin(unsigned char const*, unsigned int)
{
    noForm("fromBin");
}

template class Image<PixelRGB>;
template class Image<PixelYUV>;
template class Image<PixelGray>;

} // namespace rkil
