#pragma once

#include "image/rkil_FlatImage.h"
#include "image/rkil_Image.h"
#include "image/rkil_ImageJPEG.h"

namespace rkil {

/// One picture in several forms at once: colour, gray, compressed, L*a*b*. It keeps the forms that were declared and no others.
/// Whichever form a picture arrives in, the declared ones are made of it there and then, so that all of them show the same
/// picture in the same size. No codec stands behind the compressed form: it holds only what was compressed when it came.
///
/// Binary form: one of the forms that are declared, the compressed before colour before gray, as its code (32 bits) and then
/// either the form of ImageJPEG or channels (8 bits), width, height (32 bits) and the pixels. There is no XML form.
///
/// It belongs to the frame that holds it, so to one thread at a time. What goes wrong is thrown as rktl::Exception.
class MultiImage : public BasicImage {
public:
    /// Bits of the set of forms, and codes on the wire.
    enum Form : unsigned int {
        flatColour = 1, ///< blue, green, red and a fourth byte
        flatGray = 2,   ///< luma
        compressed = 4,
        flatLABA = 8 ///< L, a, b and a fourth byte
    };

    /// types: the forms to keep. No picture.
    explicit MultiImage(unsigned int types = flatColour);

    /// Copies the picture and the set of forms. Assignment is another thing: see below.
    MultiImage(MultiImage const& other) = default;
    MultiImage(MultiImage&& other) noexcept = default;

    unsigned int getTypes() const { return mTypes; }

    /// Declares the forms to keep from the next picture on; derives nothing. Throws unless colour, gray or compressed is among
    /// them.
    void setTypes(unsigned int types);

    /// Adds forms to an image that has its picture, and makes them. Throws when it has none.
    void addType(unsigned int types);

    /// A form that is declared and shows the picture; else null.
    ImageBase const* getForm(Form form) const;

    /// Throw when the form is not declared or there is no picture.
    FlatImage<4> const& getFlatColour() const;
    FlatImage<1> const& getFlatGray() const;
    FlatImage<4> const& getFlatLABA() const;

    /// The compressed form, as it is.
    operator ImageJPEG const&() const { return mJPEG; }

    /// Copies the compressed form or encodes one. False without a codec. Throws when there is nothing to encode.
    bool toJPEG(ImageJPEG& target) const;

    /// Copies or makes the L*a*b* form. Throws when there is nothing to make it from.
    bool toLabAlpha(FlatImage<4>& target) const;

    /// Take the picture, of 1 or 4 channels where it is flat, into the forms declared here; the set of forms stays as it is.
    /// An image without pixels clears this one. Throw when no form is declared.
    MultiImage& operator=(rk_image const& image);
    MultiImage& operator=(MultiImage const& image);
    MultiImage& operator=(Image<PixelRGB> const& image);
    /// Without a codec only the compressed form can take it: the others, if declared, are released with it, and nothing happens
    /// where the compressed form is not declared.
    MultiImage& operator=(ImageJPEG const& image);
    /// As the class of the image says.
    MultiImage& operator=(ImageBase const& image);

    /// Takes a camera's frame of 4 channels whose fourth byte is luma, which becomes the gray form as it is.
    /// Throws unless colour and gray are declared.
    void setBGRY(rk_image const& image);

    /// Exchanges buffers with image, which owns its data and is left with the old ones, and derives the other forms.
    /// Throws unless the form with the channels of image is declared.
    void swapData(rk_image& image);

    /// As assignment, but without a complaint when no form is declared. Forms not declared are released.
    void setFrom(MultiImage const& source);

    /// target: another image; becomes this picture in twice the size, with this set of forms.
    void grow(MultiImage& target) const;

    /// The picture gives the size: does nothing and returns false.
    bool resize(unsigned int width, unsigned int height) override;
    /// Releases all forms; the set of forms stays.
    void clear() override;

    unsigned int getTypeId() const override { return 22; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// Throws rktl::Exception, as does fromXML.
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    /// The form that comes in becomes the only one declared. Throws, with the image as it was, for bytes that are no picture.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    bool keeps(unsigned int form) const { return (mTypes & form) != 0; }
    void deriveRest();
    void deriveJPEG();
    rk_image const& flatForWire() const;

    uint32_t mTypes;       // forms declared
    uint32_t mPresent = 0; // forms that show the present picture; the buffers of others are kept to be used again
    FlatImage<4> mColour;
    FlatImage<1> mGray;
    ImageJPEG mJPEG;
    FlatImage<4> mLABA;
};

} // namespace rkil
