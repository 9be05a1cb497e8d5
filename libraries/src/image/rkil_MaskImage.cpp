#include "image/rkil_MaskImage.h"

#include "misc/rktl_Exception.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace rkil {

MaskImage::MaskImage(unsigned int width, unsigned int height, unsigned char outsideValue, unsigned char insideValue)
    : mOutsideValue(outsideValue)
    , mInsideValue(insideValue)
{
    if (!rk_init_image(getImage(), width, height, 1))
        throw rktl::Exception("libraries/src/image/rkil_MaskImage", "rkil::MaskImage", "MaskImage(...) - out of memory.");
}

bool MaskImage::resize(unsigned int width, unsigned int height)
{
    if (!FlatImage<1>::resize(width, height))
        return false;
    maskPolygons();
    return true;
}

bool MaskImage::resize(unsigned int width, unsigned int height, unsigned char outsideValue, unsigned char insideValue)
{
    mOutsideValue = outsideValue;
    mInsideValue = insideValue;
    return resize(width, height);
}

void MaskImage::setMaskPolygons(rksl::List<rkml::Polygon2D<float>> const& polygons)
{
    mPolygons = polygons;
    maskPolygons();
}

bool MaskImage::empty() const
{
    return FlatImage<1>::empty() || mPolygons.empty();
}

bool MaskImage::maskPolygons()
{
    if (empty())
        return false;
    setAll(mOutsideValue);
    std::vector<rkml::Polygon2D<unsigned int>> polygons;
    for (rkml::Polygon2D<float> const& polygon : mPolygons)
        if (polygon.points().size() >= 3) // fewer enclose nothing
            polygons.push_back(inPixels(polygon));
    unsigned char* pixel = getImage()->data;
    for (unsigned int y = 0; y < getHeight(); ++y)
        for (unsigned int x = 0; x < getWidth(); ++x, ++pixel)
            if (std::any_of(polygons.begin(), polygons.end(), [=](auto const& polygon) { return polygon.contains(x, y); }))
                *pixel = mInsideValue;
    return true;
}

rkml::Polygon2D<unsigned int> MaskImage::inPixels(rkml::Polygon2D<float> const& polygon) const
{
    std::vector<rkml::Point2D<unsigned int>> points;
    for (rkml::Point2D<float> const& point : polygon.points()) {
        if (!point.isNormalized())
            return rkml::Polygon2D<unsigned int>(polygon);
        points.push_back(point.denormalize<unsigned int>(getWidth(), getHeight()));
    }
    return rkml::Polygon2D<unsigned int>(std::move(points));
}

namespace {

void applyMask(unsigned char const* mask, unsigned char const* in, unsigned char* out, size_t pixels, unsigned int channels)
{
    if (channels == 1) {
        for (size_t i = 0; i < pixels; ++i)
            out[i] = in[i] & mask[i];
        return;
    }
    for (size_t i = 0; i < pixels; ++i) { // the four bytes of a pixel as one word, alike in any byte order
        uint32_t word = mask[i];
        word |= word << 8;
        word |= word << 16;
        uint32_t pixel;
        std::memcpy(&pixel, in + 4 * i, sizeof pixel);
        pixel &= word;
        std::memcpy(out + 4 * i, &pixel, sizeof pixel);
    }
}

} // namespace

template <unsigned int N> bool MaskImage::maskImage(FlatImage<N> const& source, FlatImage<N>& target) const
{
    if (!checkResolution(source))
        return false;
    if (&target != &source && !target.resize(getWidth(), getHeight()))
        return false;
    applyMask(getImage()->data, source.getImage()->data, target.getImage()->data, getImage()->size, N);
    return true;
}

template bool MaskImage::maskImage(FlatImage<1> const& source, FlatImage<1>& target) const;
template bool MaskImage::maskImage(FlatImage<4> const& source, FlatImage<4>& target) const;

} // namespace rkil
