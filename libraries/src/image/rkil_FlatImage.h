#pragma once

#include "image/rk_image.h"
#include "image/rkil_ImageBase.h"

namespace rkil {

/// An owned rk_image of N channels (1, 3 or 4) with a place among the serialisable types.
///
/// Binary form: N (8 bits), width, height and size in bytes (32 bits each), the pixels. The type id does not tell N. There is no
/// XML form.
template <unsigned int N> class FlatImage : public ImageBase {
    static_assert(N == 1 || N == 3 || N == 4, "pixels are gray, three colours, or three colours and a fourth byte");

public:
    FlatImage() = default;

    /// Copies throw rktl::Exception when there is no memory.
    FlatImage(FlatImage const& other);
    FlatImage(FlatImage&& other) noexcept;
    FlatImage& operator=(FlatImage const& other);
    FlatImage& operator=(FlatImage&& other) noexcept;
    ~FlatImage() override;

    /// For the plain operations, never null. Whatever is written to it keeps N channels or is empty.
    rk_image* getImage() { return &mImage; }
    rk_image const* getImage() const { return &mImage; }

    unsigned int getWidth() const override { return mImage.width; }
    unsigned int getHeight() const override { return mImage.height; }

    /// Keeps the pixels when the size is the same, else all bytes become 0. False when there is no memory; the image is then
    /// empty.
    bool resize(unsigned int width, unsigned int height) override;
    /// With every byte set to value.
    virtual bool resize(unsigned int width, unsigned int height, unsigned char value);
    /// Every byte becomes value.
    virtual bool setAll(unsigned char value);

    bool empty() const override;
    void clear() override;

    unsigned int getTypeId() const override { return 706; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// Throws rktl::Exception, as does fromXML.
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    /// Uses the buffer again when the size is the same. Throws rktl::Exception, with the image as it was, for another number of
    /// channels, a size that does not follow from width and height, or pixels that are not all there.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    rk_image mImage = {};
};

extern template class FlatImage<1>;
extern template class FlatImage<3>;
extern template class FlatImage<4>;

} // namespace rkil
