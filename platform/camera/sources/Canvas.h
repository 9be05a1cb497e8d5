#pragma once

#include "camera/sources/Picture.h"

#include <cstdint>
#include <vector>

namespace camera {

/// A colour in full-range BT.601, as a camera's frame holds it.
struct Colour {
    uint8_t luma = 0;
    uint8_t cb = 128;
    uint8_t cr = 128;

    static Colour rgb(int32_t red, int32_t green, int32_t blue);
    static Colour gray(int32_t luma) { return rgb(luma, luma, luma); }

    /// The same hue, brighter or darker; luma is clamped.
    Colour lighter(int32_t change) const;
};

/// A small picture with a mask, to paint backdrops and figures on. Shapes are clipped to the canvas.
class Canvas {
public:
    Canvas(int32_t width, int32_t height);

    int32_t width() const { return mWidth; }
    int32_t height() const { return mHeight; }

    void set(int32_t x, int32_t y, Colour colour);
    void rectangle(int32_t x, int32_t y, int32_t width, int32_t height, Colour colour);

    /// The ellipse inscribed in a rectangle.
    void ellipse(int32_t x, int32_t y, int32_t width, int32_t height, Colour colour);

    /// A trapezium with horizontal edges: from xTop, widthTop at row y to xBottom, widthBottom at row y + height - 1.
    void trapezium(
        int32_t y, int32_t height, int32_t xTop, int32_t widthTop, int32_t xBottom, int32_t widthBottom, Colour colour);

    /// Adds blotches of about `scale` pixels and up to +-strength in luma to the painted pixels of a rectangle.
    void texture(int32_t x, int32_t y, int32_t width, int32_t height, int32_t scale, int32_t strength, uint32_t seed);

    void mirror();

    /// The canvas as a frame of its size; what was not painted is black.
    void toPicture(Picture& picture) const;

    /// Copies the painted pixels into picture, the upper left one at (x, y), clipped.
    void drawOn(Picture& picture, int32_t x, int32_t y) const;

private:
    size_t index(int32_t x, int32_t y) const { return size_t(y) * size_t(mWidth) + size_t(x); }

    int32_t mWidth;
    int32_t mHeight;
    std::vector<Colour> mPixels;
    std::vector<uint8_t> mPainted;
};

/// Darkens the luma inside an ellipse, inscribed in the rectangle, to 5/8.
void drawShadow(Picture& picture, int32_t x, int32_t y, int32_t width, int32_t height);

} // namespace camera
