#pragma once

namespace rkil {

class PixelGray;
class PixelRGB;

/// One pixel of an rkil::Image that can be shown in colour or gray.
class Pixel {
public:
    virtual ~Pixel() = default;
    virtual PixelGray toPixelGray() const = 0;
    virtual PixelRGB toPixelRGB() const = 0;

protected:
    Pixel() = default;
    Pixel(Pixel const&) = default;
    Pixel& operator=(Pixel const&) = default;
};

/// Luma and colour differences in the ranges of ITU-R BT.601, the differences around 128.
struct PixelYUV {
    unsigned char y = 0;
    unsigned char u = 0;
    unsigned char v = 0;

    /// In 8-bit fixed point, rounded by an arithmetic shift.
    static PixelYUV fromRGB(int red, int green, int blue)
    {
        PixelYUV pixel;
        pixel.y = static_cast<unsigned char>(((66 * red + 129 * green + 25 * blue + 128) >> 8) + 16);
        pixel.u = static_cast<unsigned char>(((-38 * red - 74 * green + 112 * blue + 128) >> 8) + 128);
        pixel.v = static_cast<unsigned char>(((112 * red - 94 * green - 18 * blue + 128) >> 8) + 128);
        return pixel;
    }
};

/// Lightness and two chromaticities.
struct PixelLUV {
    unsigned char l = 0;
    unsigned char u = 0;
    unsigned char v = 0;
};

class PixelGray final : public Pixel {
public:
    unsigned char gray = 0;

    PixelGray() = default;
    explicit PixelGray(unsigned char value)
        : gray(value)
    {
    }

    /// Weights in percent, rounded down.
    static unsigned char fromRGB(unsigned int red, unsigned int green, unsigned int blue)
    {
        return static_cast<unsigned char>((30 * red + 59 * green + 11 * blue) / 100);
    }

    PixelGray toPixelGray() const override { return *this; }
    PixelRGB toPixelRGB() const override;

    /// a * weight + b * (1 - weight), cut to a whole number. weight: 0 to 1.
    void setWeightedAverage(PixelGray const& a, PixelGray const& b, double weight);
};

class PixelRGB final : public Pixel {
public:
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;

    PixelRGB() = default;
    PixelRGB(unsigned char r, unsigned char g, unsigned char b)
        : red(r)
        , green(g)
        , blue(b)
    {
    }

    PixelGray toPixelGray() const override { return PixelGray(PixelGray::fromRGB(red, green, blue)); }
    PixelRGB toPixelRGB() const override { return *this; }
    PixelYUV toPixelYUV() const { return PixelYUV::fromRGB(red, green, blue); }

    /// The mean of four, each channel rounded down.
    void setMean(PixelRGB const& p1, PixelRGB const& p2, PixelRGB const& p3, PixelRGB const& p4);

    /// Each channel a * weight + b * (1 - weight), cut to a whole number. weight: 0 to 1.
    void setWeightedAverage(PixelRGB const& a, PixelRGB const& b, double weight);
};

} // namespace rkil
