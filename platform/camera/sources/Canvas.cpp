#include "camera/sources/Canvas.h"

#include <algorithm>

namespace camera {

namespace {

uint8_t clampByte(int32_t value)
{
    return uint8_t(std::clamp(value, 0, 255));
}

/// Whether the centre of cell (x, y) lies in the ellipse inscribed in width x height cells.
bool inEllipse(int32_t x, int32_t y, int32_t width, int32_t height)
{
    int64_t const dx = int64_t(2 * x + 1 - width) * height, dy = int64_t(2 * y + 1 - height) * width;
    int64_t const radius = int64_t(width) * height;
    return dx * dx + dy * dy <= radius * radius;
}

/// A random byte for each point of the plane.
uint32_t lattice(int32_t x, int32_t y, uint32_t seed)
{
    uint32_t hash = uint32_t(x) * 0x9e3779b1u ^ uint32_t(y) * 0x85ebca77u ^ seed * 0xc2b2ae3du;
    hash ^= hash >> 15;
    hash *= 0x2c1b3c6du;
    hash ^= hash >> 12;
    hash *= 0x297a2d39u;
    return (hash ^ hash >> 15) & 255;
}

/// Value noise: lattice points every `scale` pixels, linear in between; 0 to 255.
int32_t valueNoise(int32_t x, int32_t y, int32_t scale, uint32_t seed)
{
    int32_t const column = x / scale, row = y / scale, right = x % scale, down = y % scale;
    auto corner = [&](int32_t dx, int32_t dy) { return int32_t(lattice(column + dx, row + dy, seed)); };
    int32_t const top = corner(0, 0) * (scale - right) + corner(1, 0) * right;
    int32_t const bottom = corner(0, 1) * (scale - right) + corner(1, 1) * right;
    return (top * (scale - down) + bottom * down) / (scale * scale);
}

} // namespace

Colour Colour::rgb(int32_t red, int32_t green, int32_t blue)
{
    int32_t const y = (77 * red + 150 * green + 29 * blue + 128) / 256;
    return {clampByte(y), clampByte(128 + (blue - y) * 577 / 1024), clampByte(128 + (red - y) * 730 / 1024)};
}

Colour Colour::lighter(int32_t change) const
{
    return {clampByte(luma + change), cb, cr};
}

Canvas::Canvas(int32_t width, int32_t height)
    : mWidth(width)
    , mHeight(height)
    , mPixels(size_t(width) * size_t(height))
    , mPainted(mPixels.size())
{
}

void Canvas::set(int32_t x, int32_t y, Colour colour)
{
    if (x < 0 || y < 0 || x >= mWidth || y >= mHeight)
        return;
    mPixels[index(x, y)] = colour;
    mPainted[index(x, y)] = 1;
}

void Canvas::rectangle(int32_t x, int32_t y, int32_t width, int32_t height, Colour colour)
{
    for (int32_t row = 0; row < height; ++row)
        for (int32_t column = 0; column < width; ++column)
            set(x + column, y + row, colour);
}

void Canvas::ellipse(int32_t x, int32_t y, int32_t width, int32_t height, Colour colour)
{
    for (int32_t row = 0; row < height; ++row)
        for (int32_t column = 0; column < width; ++column)
            if (inEllipse(column, row, width, height))
                set(x + column, y + row, colour);
}

void Canvas::trapezium(
    int32_t y, int32_t height, int32_t xTop, int32_t widthTop, int32_t xBottom, int32_t widthBottom, Colour colour)
{
    int32_t const last = std::max(height - 1, 1);
    for (int32_t row = 0; row < height; ++row) {
        int32_t const x = xTop + (xBottom - xTop) * row / last;
        rectangle(x, y + row, widthTop + (widthBottom - widthTop) * row / last, 1, colour);
    }
}

void Canvas::texture(int32_t x, int32_t y, int32_t width, int32_t height, int32_t scale, int32_t strength, uint32_t seed)
{
    for (int32_t row = std::max(y, 0); row < std::min(y + height, mHeight); ++row)
        for (int32_t column = std::max(x, 0); column < std::min(x + width, mWidth); ++column) {
            int32_t const change = (valueNoise(column, row, scale, seed) - 128) * strength / 128;
            Colour& pixel = mPixels[index(column, row)];
            pixel = pixel.lighter(change);
        }
}

void Canvas::mirror()
{
    for (int32_t y = 0; y < mHeight; ++y) {
        std::reverse(mPixels.begin() + int64_t(index(0, y)), mPixels.begin() + int64_t(index(0, y)) + mWidth);
        std::reverse(mPainted.begin() + int64_t(index(0, y)), mPainted.begin() + int64_t(index(0, y)) + mWidth);
    }
}

void Canvas::toPicture(Picture& picture) const
{
    picture.resize(uint32_t(mWidth), uint32_t(mHeight));
    std::fill_n(picture.luma(), picture.lumaSize(), uint8_t(0));
    std::fill(picture.bytes.begin() + int64_t(picture.lumaSize()), picture.bytes.end(), uint8_t(128));
    drawOn(picture, 0, 0);
}

// A block takes the chroma of its upper left pixel.
void Canvas::drawOn(Picture& picture, int32_t x, int32_t y) const
{
    int32_t const width = int32_t(picture.width), height = int32_t(picture.height);
    int32_t const left = std::max(0, -x), right = std::min(mWidth, width - x);
    for (int32_t row = std::max(0, -y); row < std::min(mHeight, height - y); ++row) {
        uint8_t* const luma = picture.luma() + int64_t(y + row) * width;
        uint8_t* const chroma = picture.chroma() + int64_t((y + row) / 2) * picture.chromaWidth() * 2;
        bool const evenRow = (y + row) % 2 == 0;
        for (int32_t column = left; column < right; ++column) {
            if (!mPainted[index(column, row)])
                continue;
            Colour const colour = mPixels[index(column, row)];
            luma[x + column] = colour.luma;
            if (evenRow && (x + column) % 2 == 0) {
                chroma[x + column] = colour.cb;
                chroma[x + column + 1] = colour.cr;
            }
        }
    }
}

void drawShadow(Picture& picture, int32_t x, int32_t y, int32_t width, int32_t height)
{
    int32_t const left = std::max(0, -x), right = std::min(width, int32_t(picture.width) - x);
    for (int32_t row = std::max(0, -y); row < std::min(height, int32_t(picture.height) - y); ++row) {
        uint8_t* const luma = picture.luma() + int64_t(y + row) * int32_t(picture.width) + x;
        for (int32_t column = left; column < right; ++column)
            if (inEllipse(column, row, width, height))
                luma[column] = uint8_t(luma[column] * 5 / 8);
    }
}

} // namespace camera
