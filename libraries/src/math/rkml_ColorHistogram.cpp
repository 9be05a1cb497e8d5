#include "math/rkml_ColorHistogram.h"
#include "image/rk_histogram.h"
#include "image/rk_hsv.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <bit>

namespace rkml {

namespace {

constexpr uint32_t CHANNEL_BITS = 8;
constexpr unsigned int BITS_BYTES = 12; // three bit counts in the binary form

/// Bits of a channel that is cut into so many parts.
uint32_t bitsOf(uint32_t parts)
{
    uint32_t const bits = parts ? static_cast<uint32_t>(std::bit_width(parts)) - 1 : 0;
    if (bits > CHANNEL_BITS)
        throw rktl::Exception(
            "libraries/src/math/rkml_ColorHistogram", "rkml::ColorHistogram", "setBins(...) - a channel has at most 256 bins");
    return bits;
}

} // namespace

ColorHistogram::ColorHistogram()
    : ColorHistogram(8, 8, 8)
{
}

ColorHistogram::ColorHistogram(rk_histogram const& histogram)
    : ColorHistogram(4, 4, 4)
{
    static_assert(4 * 4 * 4 == RK_HISTOGRAM_CELLS, "both number their bins alike");
    for (uint32_t bin = 0; bin < RK_HISTOGRAM_CELLS; ++bin)
        incrementBin(bin, histogram.counts[bin]);
}

ColorHistogram::ColorHistogram(uint32_t nRed, uint32_t nGreen, uint32_t nBlue)
{
    setBins(nRed, nGreen, nBlue);
}

unsigned int ColorHistogram::getTypeId() const
{
    return 605;
}

rktl::String ColorHistogram::getTypeName() const
{
    return "ColorHistogram";
}

rktl::String ColorHistogram::toXML(char const*) const
{
    throw rktl::Exception("ColorHistogram::toXML( ) - not implemented");
}

bool ColorHistogram::fromXML(char const*)
{
    throw rktl::Exception("ColorHistogram::fromXML( ) - not implemented");
}

unsigned int ColorHistogram::getBinLength() const
{
    return Histogram::getBinLength() + BITS_BYTES;
}

unsigned int ColorHistogram::toBin(unsigned char* out) const
{
    unsigned int const written = Histogram::toBin(out);
    rksl::ByteWriter writer(out + written);
    writer.u32(mRedBits);
    writer.u32(mGreenBits);
    writer.u32(mBlueBits);
    return written + writer.written();
}

unsigned int ColorHistogram::fromBin(unsigned char const* in, unsigned int length)
{
    Histogram bins;
    rksl::ByteReader reader(in, length);
    reader.record(bins);
    uint32_t const red = reader.u32();
    uint32_t const green = reader.u32();
    uint32_t const blue = reader.u32();
    if (red > CHANNEL_BITS || green > CHANNEL_BITS || blue > CHANNEL_BITS || bins.getBinCount() != 1u << (red + green + blue))
        rksl::ByteReader::fail();
    Histogram::operator=(bins);
    mRedBits = red;
    mGreenBits = green;
    mBlueBits = blue;
    initialize();
    return reader.position();
}

void ColorHistogram::setBins(uint32_t nRed, uint32_t nGreen, uint32_t nBlue)
{
    uint32_t const red = bitsOf(nRed);
    uint32_t const green = bitsOf(nGreen);
    uint32_t const blue = bitsOf(nBlue);
    Histogram::setBins(nRed * nGreen * nBlue);
    mRedBits = red;
    mGreenBits = green;
    mBlueBits = blue;
    initialize();
}

void ColorHistogram::ensureBins(uint32_t nRed, uint32_t nGreen, uint32_t nBlue)
{
    if (bitsOf(nRed) != mRedBits || bitsOf(nGreen) != mGreenBits || bitsOf(nBlue) != mBlueBits)
        setBins(nRed, nGreen, nBlue);
}

void ColorHistogram::initialize()
{
    mRedMask = (1u << mRedBits) - 1;
    mGreenMask = (1u << mGreenBits) - 1;
    mBlueMask = (1u << mBlueBits) - 1;
    mBlueShift = mRedBits + mGreenBits;
    mRedDown = CHANNEL_BITS - mRedBits;
    mGreenDown = CHANNEL_BITS - mGreenBits;
    mBlueDown = CHANNEL_BITS - mBlueBits;
}

uint32_t ColorHistogram::getBin(uint8_t red, uint8_t green, uint8_t blue) const
{
    return ((red >> mRedDown) & mRedMask) | ((green >> mGreenDown) & mGreenMask) << mRedBits |
        ((blue >> mBlueDown) & mBlueMask) << mBlueShift;
}

void ColorHistogram::addColor(uint8_t red, uint8_t green, uint8_t blue, uint32_t count)
{
    incrementBin(getBin(red, green, blue), count);
}

float ColorHistogram::getValue(uint8_t red, uint8_t green, uint8_t blue) const
{
    return getValue(getBin(red, green, blue));
}

void ColorHistogram::binToColor(uint32_t bin, uint32_t& packed) const
{
    uint32_t const red = ((bin & mRedMask) << mRedDown) + 128 / (mRedMask + 1);
    uint32_t const green = (((bin >> mRedBits) & mGreenMask) << mGreenDown) + 128 / (mGreenMask + 1);
    uint32_t const blue = ((bin >> mBlueShift) << mBlueDown) + 128 / (mBlueMask + 1);
    packed = red | green << 8 | blue << 16;
}

void ColorHistogram::binToHSV(uint32_t bin, float& hue, float& saturation, float& value) const
{
    uint32_t packed = 0;
    binToColor(bin, packed);
    rk_rgb_to_hsv(packed & 255, packed >> 8 & 255, packed >> 16 & 255, &hue, &saturation, &value);
}

} // namespace rkml
