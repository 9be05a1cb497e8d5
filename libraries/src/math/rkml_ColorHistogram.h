#pragma once

#include "math/rkml_Histogram.h"

#include <cstdint>

struct rk_histogram;

namespace rkml {

/// A histogram of 8-bit colours, with so many bits of each channel as one chooses. Channels come in the order red, green,
/// blue everywhere. Channel sizes are powers of two from 1 to 256; larger ones throw rktl::Exception.
///
/// Binary form: that of Histogram, then the bits of red, green and blue.
class ColorHistogram : public Histogram {
public:
    /// 512 bins, 8 for each channel.
    ColorHistogram();

    /// 64 bins, 4 for each channel, with the same counts; the positions are dropped.
    explicit ColorHistogram(rk_histogram const& histogram);

    ColorHistogram(uint32_t nRed, uint32_t nGreen, uint32_t nBlue);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;

    /// Throws, with the object as it was, for what Histogram refuses and for bits that do not give the number of bins.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// Replaces the bins by nRed * nGreen * nBlue, all 0.
    void setBins(uint32_t nRed, uint32_t nGreen, uint32_t nBlue);

    /// setBins, unless the histogram already has those sizes: its contents then stay.
    void ensureBins(uint32_t nRed, uint32_t nGreen, uint32_t nBlue);

    /// Bin of a colour.
    uint32_t getBin(uint8_t red, uint8_t green, uint8_t blue) const;

    void addColor(uint8_t red, uint8_t green, uint8_t blue, uint32_t count);

    /// Share of the bin of a colour.
    float getValue(uint8_t red, uint8_t green, uint8_t blue) const;
    using Histogram::getValue;

    /// packed: centre colour of a bin, red in the low byte, then green, then blue.
    void binToColor(uint32_t bin, uint32_t& packed) const;

    /// The same colour as hue in degrees, saturation and value from 0 to 1.
    void binToHSV(uint32_t bin, float& hue, float& saturation, float& value) const;

private:
    /// Works out masks and shifts from the three bit counts.
    void initialize();

    uint32_t mRedBits = 0; // bits of each channel in a bin number
    uint32_t mGreenBits = 0;
    uint32_t mBlueBits = 0;
    uint32_t mRedMask = 0; // 2^bits - 1
    uint32_t mGreenMask = 0;
    uint32_t mBlueMask = 0;
    uint32_t mBlueShift = 0; // where blue starts in a bin number
    uint32_t mRedDown = 0;   // 8 - bits: how far a byte is shifted down
    uint32_t mGreenDown = 0;
    uint32_t mBlueDown = 0;
};

} // namespace rkml
