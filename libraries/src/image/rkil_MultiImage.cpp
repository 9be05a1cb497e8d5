#include "image/rkil_MultiImage.h"

#include "image/rkil_Conversion.h"
#include "image/rkil_Convert.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <string>

namespace rkil {

namespace {

char const* const noForm = "JPEG, Flat Gray or Flat RGB type not set";

[[noreturn]] void fail(std::string const& message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/image/rkil_MultiImage", "MultiImage", message, line);
}

void requireForm(unsigned int types, unsigned int line = __builtin_LINE())
{
    if (!(types & (MultiImage::flatColour | MultiImage::flatGray | MultiImage::compressed)))
        fail(noForm, line);
}

void requireFlat(rk_image const& image, unsigned int line = __builtin_LINE())
{
    if (image.channels != 1 && image.channels != 4)
        fail("operator=(rk_image) - only works on RGB and grey images", line);
}

/// For steps that can only fail for want of memory.
void require(bool done, unsigned int line = __builtin_LINE())
{
    if (!done)
        fail("out of memory", line);
}

} // namespace

MultiImage::MultiImage(unsigned int types)
    : mTypes(types)
{
}

void MultiImage::setTypes(unsigned int types)
{
    requireForm(types);
    mTypes = types;
}

void MultiImage::addType(unsigned int types)
{
    bool const fromColour = getForm(flatColour);
    if (!fromColour && !getForm(flatGray) && !getForm(compressed))
        fail(noForm);
    if ((types & flatColour) && !fromColour)
        require(gray2color(*mGray.getImage(), *mColour.getImage()));
    if ((types & flatGray) && !getForm(flatGray))
        require(color2gray(*mColour.getImage(), *mGray.getImage()));
    if ((types & compressed) && !getForm(compressed)) {
        if (fromColour)
            convert<ImageJPEG>(mColour, mJPEG);
        else
            convert<ImageJPEG>(mGray, mJPEG);
    }
    if ((types & flatLABA) && !getForm(flatLABA))
        require(toLabAlpha(mLABA));
    mTypes |= types;
    mPresent |= types;
}

ImageBase const* MultiImage::getForm(Form form) const
{
    if (!(mTypes & mPresent & form))
        return nullptr;
    switch (form) {
    case flatColour:
        return mColour.empty() ? nullptr : &mColour;
    case flatGray:
        return mGray.empty() ? nullptr : &mGray;
    case compressed:
        return mJPEG.getSize() ? &mJPEG : nullptr;
    case flatLABA:
        return mLABA.empty() ? nullptr : &mLABA;
    }
    return nullptr;
}

FlatImage<4> const& MultiImage::getFlatColour() const
{
    if (!getForm(flatColour))
        fail("Flat RGB image not set.");
    return mColour;
}

FlatImage<1> const& MultiImage::getFlatGray() const
{
    if (!getForm(flatGray))
        fail("Flat Gray image not set.");
    return mGray;
}

FlatImage<4> const& MultiImage::getFlatLABA() const
{
    if (!getForm(flatLABA))
        fail("Flat LABA image not set.");
    return mLABA;
}

bool MultiImage::toJPEG(ImageJPEG& target) const
{
    if (&target != &mJPEG && getForm(compressed)) {
        target = mJPEG;
        return true;
    }
    if (keeps(flatColour))
        return target.fromFlatImage(*mColour.getImage());
    if (keeps(flatGray))
        return target.fromFlatImage(*mGray.getImage());
    fail(noForm);
}

bool MultiImage::toLabAlpha(FlatImage<4>& target) const
{
    if (&target != &mLABA && getForm(flatLABA))
        return rk_copy_image(mLABA.getImage(), target.getImage());
    if (getForm(flatColour))
        return bgr2lab(*mColour.getImage(), *target.getImage());
    if (getForm(flatGray))
        return gray2lab(*mGray.getImage(), *target.getImage());
    fail(noForm);
}

MultiImage& MultiImage::operator=(rk_image const& image)
{
    requireForm(mTypes);
    if (!rk_image_valid(&image)) {
        clear();
        return *this;
    }
    requireFlat(image);
    uint32_t const width = image.width;
    uint32_t const height = image.height;
    bool const colour = image.channels == 4;
    if (keeps(flatColour))
        require(colour ? rk_copy_image(&image, mColour.getImage()) : gray2color(image, *mColour.getImage()));
    if (keeps(flatGray))
        require(colour ? color2gray(image, *mGray.getImage()) : rk_copy_image(&image, mGray.getImage()));
    mWidth = width;
    mHeight = height;
    deriveRest();
    return *this;
}

/// The forms that are made from colour or gray, which stand ready as far as they are declared.
void MultiImage::deriveRest()
{
    mPresent = mTypes & (flatColour | flatGray | compressed);
    deriveJPEG();
    if (keeps(flatLABA) && mPresent != compressed) {
        require(toLabAlpha(mLABA));
        mPresent |= flatLABA;
    }
}

void MultiImage::deriveJPEG()
{
    mJPEG.clear();
    if (keeps(compressed) && (keeps(flatColour) || keeps(flatGray)))
        toJPEG(mJPEG);
}

MultiImage& MultiImage::operator=(MultiImage const& image)
{
    requireForm(mTypes);
    setFrom(image);
    return *this;
}

MultiImage& MultiImage::operator=(Image<PixelRGB> const& image)
{
    FlatImage<4> flat;
    requireForm(mTypes);
    require(convert(image, flat));
    return *this = *flat.getImage();
}

MultiImage& MultiImage::operator=(ImageJPEG const& image)
{
    requireForm(mTypes);
    if (!keeps(compressed))
        return *this;
    ImageJPEG taken = image; // it may be the one that clear() empties
    clear();
    mJPEG = std::move(taken);
    mPresent = compressed;
    mWidth = mJPEG.getWidth();
    mHeight = mJPEG.getHeight();
    return *this;
}

MultiImage& MultiImage::operator=(ImageBase const& image)
{
    if (auto const* const multi = dynamic_cast<MultiImage const*>(&image))
        return *this = *multi;
    if (auto const* const jpeg = dynamic_cast<ImageJPEG const*>(&image))
        return *this = *jpeg;
    if (auto const* const colour = dynamic_cast<FlatImage<4> const*>(&image))
        return *this = *colour->getImage();
    if (auto const* const gray = dynamic_cast<FlatImage<1> const*>(&image))
        return *this = *gray->getImage();
    requireForm(mTypes);
    if (image.empty()) {
        clear();
        return *this;
    }
    FlatImage<4> flat;
    if (convert(image, flat))
        *this = *flat.getImage();
    return *this;
}

void MultiImage::setBGRY(rk_image const& image)
{
    if (image.channels != 4)
        fail("fromBGRY(rk_image) - only works on BGRYimages");
    if (!keeps(flatColour) || !keeps(flatGray))
        fail("swapBGRY requires at least flatgray and flatbgra images.");
    if (!rk_image_valid(&image)) {
        clear();
        return;
    }
    mWidth = image.width;
    mHeight = image.height;
    require(rk_copy_image(&image, mColour.getImage()));
    require(rk_extract_channel(mColour.getImage(), mGray.getImage(), 3, 0));
    deriveRest();
}

void MultiImage::swapData(rk_image& image)
{
    if (image.channels != 1 && image.channels != 4)
        fail("swapData(rk_image) - only works on RGB or grey images");
    bool const colour = image.channels == 4;
    if (colour && !keeps(flatColour))
        fail("swapData(rk_image) - a color image can only be swapped for another color image");
    if (!colour && !keeps(flatGray))
        fail("operator=(rk_image) - a gray image can only be swapped for another gray image");
    rk_image& form = colour ? *mColour.getImage() : *mGray.getImage();
    std::swap(form, image);
    *this = form; // a form that is its own source is left in place
}

void MultiImage::setFrom(MultiImage const& source)
{
    bool const flat = source.getForm(flatColour) || source.getForm(flatGray);
    bool const laba = flat || source.getForm(flatLABA);
    if (keeps(flatColour) && flat)
        require(convert<FlatImage<4>>(source, mColour));
    else
        mColour.clear();
    if (keeps(flatGray) && flat)
        require(convert<FlatImage<1>>(source, mGray));
    else
        mGray.clear();
    if (keeps(flatLABA) && laba)
        require(source.toLabAlpha(mLABA));
    else
        mLABA.clear();
    if (keeps(compressed) && source.getForm(compressed))
        mJPEG = source.mJPEG;
    else
        deriveJPEG();
    mPresent = mTypes; // what could not be made is empty
    mWidth = source.mWidth;
    mHeight = source.mHeight;
}

void MultiImage::grow(MultiImage& target) const
{
    requireForm(mTypes);
    target.clear();
    target.mTypes = mTypes;
    if (getForm(flatColour))
        require(rk_grow_image(mColour.getImage(), target.mColour.getImage()));
    if (getForm(flatGray))
        require(rk_grow_image(mGray.getImage(), target.mGray.getImage()));
    if (getForm(flatLABA))
        require(rk_grow_image(mLABA.getImage(), target.mLABA.getImage()));
    target.mPresent = mPresent;
    target.deriveJPEG();
    target.mWidth = 2 * mWidth;
    target.mHeight = 2 * mHeight;
}

bool MultiImage::resize(unsigned int, unsigned int)
{
    return false;
}

void MultiImage::clear()
{
    BasicImage::clear();
    mPresent = 0;
    mColour.clear();
    mGray.clear();
    mJPEG.clear();
    mLABA.clear();
}

rktl::String MultiImage::getTypeName() const
{
    return "MultiImage";
}

rktl::String MultiImage::toXML(char const*) const
{
    fail("toXML() - not implemented.");
}

bool MultiImage::fromXML(char const*)
{
    fail("fromXML() - not implemented.");
}

unsigned int MultiImage::getBinLength() const
{
    requireForm(mTypes);
    if (keeps(compressed))
        return mJPEG.getBinLength() + 4;
    return flatForWire().size + 13;
}

/// Colour before gray; an empty image when the form has no picture.
rk_image const& MultiImage::flatForWire() const
{
    static rk_image const none = {};
    if (keeps(flatColour))
        return getForm(flatColour) ? *mColour.getImage() : none;
    return getForm(flatGray) ? *mGray.getImage() : none;
}

unsigned int MultiImage::toBin(unsigned char* out) const
{
    requireForm(mTypes);
    rksl::ByteWriter writer(out);
    if (keeps(compressed)) {
        writer.u32(compressed);
        writer.record(mJPEG);
        return writer.written();
    }
    bool const colour = keeps(flatColour);
    rk_image const& image = flatForWire();
    writer.u32(colour ? flatColour : flatGray);
    writer.u8(colour ? 4 : 1);
    writer.u32(image.width);
    writer.u32(image.height);
    writer.bytes(image.data, image.size);
    return writer.written();
}

unsigned int MultiImage::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    uint32_t const form = reader.u32();
    if (form != flatColour && form != flatGray && form != compressed)
        fail(noForm);
    if (form == compressed) {
        ImageJPEG read; // what this image holds stays until all has been read
        reader.record(read);
        mTypes = form;
        *this = read;
        return reader.position();
    }
    uint32_t const channels = reader.u8();
    uint32_t const width = reader.u32();
    uint32_t const height = reader.u32();
    if (width && height > reader.remaining() / width)
        rksl::ByteReader::fail();
    uint64_t const size = uint64_t(width) * height * channels;
    if (size > reader.remaining())
        rksl::ByteReader::fail();
    // A view: the pixels are copied by the assignment, which never writes to its source.
    unsigned char* const pixels = const_cast<unsigned char*>(reader.bytes(static_cast<uint32_t>(size)));
    rk_image const view = {pixels, width, height, channels, static_cast<uint32_t>(size)};
    requireFlat(view);
    mTypes = form;
    *this = view;
    return reader.position();
}

} // namespace rkil
