#include "image/rkil_Pixel.h"

namespace rkil {

namespace {

unsigned char weighted(unsigned char a, unsigned char b, double weight)
{
    return static_cast<unsigned char>(a * weight + b * (1 - weight));
}

unsigned char mean(unsigned char a, unsigned char b, unsigned char c, unsigned char d)
{
    return static_cast<unsigned char>((a + b + c + d) >> 2);
}

} // namespace

PixelRGB PixelGray::toPixelRGB() const
{
    return {gray, gray, gray};
}

void PixelGray::setWeightedAverage(PixelGray const& a, PixelGray const& b, double weight)
{
    gray = weighted(a.gray, b.gray, weight);
}

void PixelRGB::setMean(PixelRGB const& p1, PixelRGB const& p2, PixelRGB const& p3, PixelRGB const& p4)
{
    red = mean(p1.red, p2.red, p3.red, p4.red);
    green = mean(p1.green, p2.green, p3.green, p4.green);
    blue = mean(p1.blue, p2.blue, p3.blue, p4.blue);
}

void PixelRGB::setWeightedAverage(PixelRGB const& a, PixelRGB const& b, double weight)
{
    red = weighted(a.red, b.red, weight);
    green = weighted(a.green, b.green, weight);
    blue = weighted(a.blue, b.blue, weight);
}

} // namespace rkil
