#pragma once

#include "image/rk_image.h"
#include "image/rkil_BasicImage.h"

namespace rkil {

class PixelImage;

/// Holds a compressed picture as bytes, and is the place for a codec. None stands behind it: what would encode or decode does
/// nothing and gives false, and width and height stay 0.
///
/// Binary form: size in bytes (32 bits), the bytes. There is no XML form.
class ImageJPEG : public BasicImage {
public:
    ImageJPEG() = default;
    /// The copy owns its bytes, whoever owned the other's.
    ImageJPEG(ImageJPEG const& other);
    ImageJPEG(ImageJPEG&& other) noexcept;
    ImageJPEG& operator=(ImageJPEG other) noexcept;
    ~ImageJPEG() override;

    /// Null when there are none.
    unsigned char const* getData() const { return mData; }
    unsigned int getSize() const { return mSize; } ///< bytes

    /// Takes a copy of the bytes.
    void setData(unsigned char const* data, unsigned int size);
    /// Refers to bytes that outlive this object or its next change.
    void setView(unsigned char const* data, unsigned int size);

    /// The bytes as a file. False when it cannot be written or read; load then leaves the image as it was.
    bool write(char const* path) const;
    bool load(char const* path);

    bool init() { return false; }
    bool toFlatImage(rk_image&) const { return false; }
    bool fromFlatImage(rk_image const&) { return false; }
    bool toPixelImage(PixelImage&) const { return false; }
    bool fromPixelImage(PixelImage const&) { return false; }

    /// A compressed picture has the size that it was made with: false.
    bool resize(unsigned int, unsigned int) override { return false; }
    void clear() override;

    unsigned int getTypeId() const override { return 702; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// Throws rktl::Exception, as does fromXML.
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override { return mSize + 4; }
    unsigned int toBin(unsigned char* out) const override;
    /// Clears first. Throws rktl::Exception when the bytes are not all there.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    uint32_t mSize = 0; // bytes
    unsigned char const* mData = nullptr;
    bool mOwned = false; // mData was allocated here
};

} // namespace rkil
