#include "image/rkil_Conversion.h"

#include "image/rk_hsv.h"
#include "image/rk_image.h"
#include "misc/rktl_Exception.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

namespace rkil {

namespace {

[[noreturn]] void fail(std::string const& message, unsigned int line)
{
    throw rktl::Exception("libraries/src/image/rkil_Conversion", "rkil::Conversion", message, line);
}

void requirePixels(rk_image const& source, char const* message, unsigned int line = __builtin_LINE())
{
    if (!source.data)
        fail(message, line);
}

void requireChannels(bool fitting, char const* message, unsigned int line = __builtin_LINE())
{
    if (!fitting)
        fail(message, line);
}

bool isColour(rk_image const& image)
{
    return image.channels == 3 || image.channels == 4;
}

/// Sizes target for the pixels of source.
bool prepare(rk_image const& source, rk_image& target, uint32_t channels)
{
    return (&source != &target || source.channels == channels) && rk_ensure_image(&target, source.width, source.height, channels);
}

unsigned char roundToByte(float value)
{
    if (!(value >= 0.0f))
        return 0;
    return value >= 255.0f ? 255 : static_cast<unsigned char>(value + 0.5f);
}

/// Calls work(in, out) for each pixel of two images with the channels of source, and keeps the fourth byte.
template <class Work> bool eachPixel(rk_image const& source, rk_image& target, Work work)
{
    if (!prepare(source, target, source.channels))
        return false;
    uint32_t const channels = source.channels;
    unsigned char const* in = source.data;
    unsigned char const* const end = in + source.size;
    for (unsigned char* out = target.data; in != end; in += channels, out += channels) {
        work(in, out);
        if (channels == 4)
            out[3] = in[3];
    }
    return true;
}

/// Calls work(in, pixel) for each pixel of a flat image and the same one of a pixel image, which is sized for it.
template <class P, class Work> bool inflate(rk_image const& source, Image<P>& target, Work work)
{
    if (!target.resize(source.width, source.height))
        return false;
    unsigned char const* in = source.data;
    for (uint32_t y = 0; y < source.height; ++y)
        for (uint32_t x = 0; x < source.width; ++x, in += source.channels)
            work(in, target.at(x, y));
    return true;
}

/// Calls work(pixel, out) for each pixel of a part of a pixel image and the same one of a flat image, which is sized for it.
template <class P, class Work>
bool flatten(Image<P> const& source, rk_image& target, uint32_t channels, rkml::BoundingBox<int> const* part, Work work)
{
    uint32_t left = 0, top = 0, width = source.getWidth(), height = source.getHeight();
    if (part) {
        if (part->x < 0 || part->y < 0 || part->width < 0 || part->height < 0 || int64_t(part->x) + part->width > width ||
            int64_t(part->y) + part->height > height)
            return false;
        left = static_cast<uint32_t>(part->x);
        top = static_cast<uint32_t>(part->y);
        width = static_cast<uint32_t>(part->width);
        height = static_cast<uint32_t>(part->height);
    }
    if (!rk_ensure_image(&target, width, height, channels))
        return false;
    unsigned char* out = target.data;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x, out += channels)
            work(source.at(left + x, top + y), out);
    return true;
}

/// Lightness above and below the kink of the CIE curve, scaled to 0..255. f: labCurve(y).
unsigned char lightness(float y, float f)
{
    return roundToByte(y > 0.008856f ? f * 295.8f - 40.8f : y * 2303.415f);
}

float labCurve(float t)
{
    return t > 0.008856f ? std::pow(t, 0.3333333432674408f) : t * 7.787f + 0.13793103f;
}

float inverseLabCurve(float t)
{
    return t > 0.20689656f ? t * t * t : t * 0.12841855f - 0.017712904f;
}

void pixelToLab(unsigned char const* in, unsigned char* out)
{
    float const scale = 0.003921569f;
    float const red = static_cast<float>(in[2]) * scale;
    float const green = static_cast<float>(in[1]) * scale;
    float const blue = static_cast<float>(in[0]) * scale;
    float const y = 0.212671f * red + 0.71516f * green + 0.072169f * blue;
    float const x = (0.412453f * red + 0.35758f * green + 0.180423f * blue) * 1.0521265f;
    float const z = (0.019334f * red + 0.119193f * green + 0.950227f * blue) * 0.9184811f;
    float const fy = labCurve(y);
    out[0] = lightness(y, fy);
    out[1] = roundToByte((labCurve(x) - fy) * 500.0f + 128.0f);
    out[2] = roundToByte((fy - labCurve(z)) * 200.0f + 128.0f);
}

void labToPixel(unsigned char const* in, unsigned char* out)
{
    float const fy = (static_cast<float>(in[0]) * 0.39215687f + 16.0f) * 0.00862069f;
    float const y = inverseLabCurve(fy);
    float const x = inverseLabCurve((static_cast<float>(in[1]) - 127.0f) * 0.002f + fy) * 0.950455f;
    float const z = inverseLabCurve((static_cast<float>(in[2]) - 127.0f) * -0.005f + fy) * 1.088753f;
    out[2] = roundToByte((3.240479f * x - 1.53715f * y - 0.498535f * z) * 255.0f);
    out[1] = roundToByte((-0.969256f * x + 1.875992f * y + 0.041556f * z) * 255.0f);
    out[0] = roundToByte((0.055648f * x - 0.204043f * y + 1.057311f * z) * 255.0f);
}

} // namespace

bool color2gray(rk_image const& source, rk_image& target)
{
    requirePixels(source, "color2gray( ... ) - NULL buffer");
    requireChannels(isColour(source), "color2gray( ... ) - input image should be 4 channels");
    if (!prepare(source, target, 1))
        return false;
    size_t const count = target.size;
    unsigned char const* const in = source.data;
    unsigned char* const out = target.data;
    if (source.channels == 4)
        for (size_t i = 0; i < count; ++i)
            out[i] = PixelGray::fromRGB(in[4 * i + 2], in[4 * i + 1], in[4 * i]);
    else
        for (size_t i = 0; i < count; ++i)
            out[i] = PixelGray::fromRGB(in[3 * i], in[3 * i + 1], in[3 * i + 2]);
    return true;
}

bool color2gray(rk_image const& source, Image<PixelGray>& target)
{
    requirePixels(source, "color2gray( ... ) - NULL buffer");
    requireChannels(isColour(source), "color2gray( ... ) - bgra image should be 4 channels");
    size_t const red = source.channels == 4 ? 2 : 0;
    size_t const blue = 2 - red;
    return inflate(source, target,
        [=](unsigned char const* in, PixelGray& pixel) { pixel.gray = PixelGray::fromRGB(in[red], in[1], in[blue]); });
}

bool color2gray(Image<PixelRGB> const& source, rk_image& target)
{
    return flatten(
        source, target, 1, nullptr, [](PixelRGB const& pixel, unsigned char* out) { *out = pixel.toPixelGray().gray; });
}

bool color2gray(Image<PixelRGB> const& source, Image<PixelGray>& target)
{
    if (!target.resize(source.getWidth(), source.getHeight()))
        return false;
    for (unsigned int y = 0; y < source.getHeight(); ++y)
        for (unsigned int x = 0; x < source.getWidth(); ++x)
            target.at(x, y) = source.at(x, y).toPixelGray();
    return true;
}

bool gray2color(rk_image const& source, rk_image& target)
{
    requirePixels(source, "gray2color( ... ) - NULL buffer");
    if (source.channels != 1 || !prepare(source, target, 4))
        return false;
    unsigned char const* const in = source.data;
    unsigned char* const out = target.data;
    size_t const count = source.size;
    for (size_t i = 0; i < count; ++i) {
        unsigned char const gray = in[i];
        unsigned char const pixel[4] = {gray, gray, gray, 255};
        std::memcpy(out + 4 * i, pixel, sizeof pixel);
    }
    return true;
}

bool gray2color(rk_image const& source, Image<PixelRGB>& target)
{
    requirePixels(source, "gray2color( ... ) - NULL buffer");
    return source.channels == 1 &&
        inflate(source, target, [](unsigned char const* in, PixelRGB& pixel) { pixel = PixelGray(*in).toPixelRGB(); });
}

bool bgr2yuv(rk_image const& source, rk_image& target)
{
    requirePixels(source, "bgr2yuv( ... ) - NULL src buffer");
    requireChannels(isColour(source), "bgr2yuv( ... ) - input image should be either 3 OR 4 channels");
    return eachPixel(source, target, [](unsigned char const* in, unsigned char* out) {
        PixelYUV const pixel = PixelYUV::fromRGB(in[2], in[1], in[0]);
        out[0] = pixel.y;
        out[1] = pixel.u;
        out[2] = pixel.v;
    });
}

bool bgr2hsv(rk_image const& source, rk_image& target)
{
    requirePixels(source, "bgr2hsv( ... ) - NULL src buffer");
    requireChannels(isColour(source), "bgr2hsv( ... ) - input image should be either 3 OR 4 channels");
    return eachPixel(source, target, [](unsigned char const* in, unsigned char* out) {
        float h, s, v;
        rk_rgb_to_hsv(in[2], in[1], in[0], &h, &s, &v);
        out[0] = roundToByte(h / 360.0f * 255.0f);
        out[1] = roundToByte(255.0f * s);
        out[2] = roundToByte(255.0f * v);
    });
}

bool hsv2bgr(rk_image const& source, rk_image& target)
{
    requirePixels(source, "hsv2bgr( ... ) - NULL src buffer");
    requireChannels(isColour(source), "hsv2bgr( ... ) - input image should be either 3 OR 4 channels");
    return eachPixel(source, target, [](unsigned char const* in, unsigned char* out) {
        float const h = static_cast<float>(in[0]) / 255.0f * 360.0f;
        float const s = static_cast<float>(in[1]) / 255.0f;
        float const v = static_cast<float>(in[2]) / 255.0f;
        rk_hsv_to_rgb(h, s, v, &out[2], &out[1], &out[0]);
    });
}

bool bgr2lab(rk_image const& source, rk_image& target)
{
    requirePixels(source, "bgr2lab( ... ) - NULL src buffer");
    requireChannels(isColour(source), "bgr2lab( ... ) - input image should be either 3 OR 4 channels");
    return eachPixel(source, target, pixelToLab);
}

bool lab2bgr(rk_image const& source, rk_image& target)
{
    requirePixels(source, "lab2bgr( ... ) - NULL src buffer");
    requireChannels(isColour(source), "lab2bgr( ... ) - input image should be either 3 OR 4 channels");
    return eachPixel(source, target, labToPixel);
}

bool gray2lab(rk_image const& source, rk_image& target)
{
    requirePixels(source, "gray2lab( ... ) - NULL gray buffer");
    requireChannels(source.channels == 1, "gray2lab( ... ) - input image should be 1 channel");
    if (!prepare(source, target, 4))
        return false;
    std::array<unsigned char, 256> table; // 256 powers instead of one for each pixel
    for (size_t gray = 0; gray < table.size(); ++gray) {
        float const y = static_cast<float>(gray) / 255.0f;
        table[gray] = lightness(y, labCurve(y));
    }
    for (size_t i = 0; i < source.size; ++i) {
        unsigned char* const out = target.data + 4 * i;
        out[0] = table[source.data[i]];
        out[1] = out[2] = 0;
        out[3] = 255;
    }
    return true;
}

bool lab2gray(rk_image const& source, rk_image& target)
{
    requirePixels(source, "lab2gray( ... ) - NULL src buffer");
    requireChannels(isColour(source), "lab2gray( ... ) - input image should be either 3 OR 4 channels");
    if (!prepare(source, target, 1))
        return false;
    for (size_t i = 0; i < target.size; ++i)
        target.data[i] = source.data[source.channels * i];
    return true;
}

bool flattenColor(Image<PixelRGB> const& source, rk_image& target, rkml::BoundingBox<int> const* part)
{
    return flatten(source, target, 4, part, [](PixelRGB const& pixel, unsigned char* out) {
        out[0] = pixel.blue;
        out[1] = pixel.green;
        out[2] = pixel.red;
        out[3] = 255;
    });
}

bool flattenGray(Image<PixelGray> const& source, rk_image& target, rkml::BoundingBox<int> const* part)
{
    return flatten(source, target, 1, part, [](PixelGray const& pixel, unsigned char* out) { *out = pixel.gray; });
}

bool inflateColor(rk_image const& source, Image<PixelRGB>& target)
{
    requirePixels(source, "inflateColor( ... ) - NULL buffer");
    requireChannels(isColour(source), "inflateColor( ... ) - Invalid Channels");
    size_t const red = source.channels == 4 ? 2 : 0;
    return inflate(
        source, target, [=](unsigned char const* in, PixelRGB& pixel) { pixel = PixelRGB(in[red], in[1], in[2 - red]); });
}

bool inflateGray(rk_image const& source, Image<PixelGray>& target)
{
    requirePixels(source, "inflateColor( ... ) - NULL buffer");
    requireChannels(source.channels == 1, "inflateGray( ... ) - Invalid Channels");
    return inflate(source, target, [](unsigned char const* in, PixelGray& pixel) { pixel.gray = *in; });
}

} // namespace rkil
