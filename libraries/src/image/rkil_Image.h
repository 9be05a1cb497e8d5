#pragma once

#include "image/rkil_BasicImage.h"
#include "image/rkil_Pixel.h"

#include <cstddef>
#include <vector>

namespace rkil {

/// Base of the images that hold pixel objects.
class PixelImage : public BasicImage { };

/// A picture as a two-dimensional array of pixel objects, for code that works on a pixel at a time and needs no speed.
/// P is PixelRGB, PixelYUV or PixelGray. It has neither a binary nor an XML form: asking for one throws rktl::Exception.
template <class P> class Image : public PixelImage {
public:
    Image() = default;
    /// Throws rktl::Exception when there is no memory.
    Image(unsigned int width, unsigned int height);

    /// x and y lie in the image.
    P& at(unsigned int x, unsigned int y) { return mPixels[x + size_t(mWidth) * y]; }
    P const& at(unsigned int x, unsigned int y) const { return mPixels[x + size_t(mWidth) * y]; }

    /// Keeps the pixels when the size is the same, else all become 0. False, with the image empty, when there is no memory.
    bool resize(unsigned int width, unsigned int height) override;
    void clear() override;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    std::vector<P> mPixels; // row after row
};

extern template class Image<PixelRGB>;
extern template class Image<PixelYUV>;
extern template class Image<PixelGray>;

} // namespace rkil
