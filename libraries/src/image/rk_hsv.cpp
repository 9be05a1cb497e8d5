#include "image/rk_hsv.h"

#include <algorithm>
#include <cmath>

namespace {

unsigned char toByte(float value)
{
    float const scaled = value * 255.0f;
    if (!(scaled > 0.0f)) // neither negative values nor the NaN of a senseless input
        return 0;
    return scaled >= 255.0f ? 255 : static_cast<unsigned char>(scaled);
}

} // namespace

int rk_rgb_to_hsv(unsigned char r, unsigned char g, unsigned char b, float* h, float* s, float* v)
{
    if (!h || !s || !v)
        return 0;
    float const red = static_cast<float>(r) / 255.0f;
    float const green = static_cast<float>(g) / 255.0f;
    float const blue = static_cast<float>(b) / 255.0f;
    float const high = std::max({red, green, blue});
    float const delta = high - std::min({red, green, blue});
    *v = high;
    if (delta == 0.0f) {
        *h = *s = 0.0f;
        return 1;
    }
    *s = delta / high;
    float sector;
    if (red == high)
        sector = (green - blue) / delta;
    else if (green == high)
        sector = 2.0f + (blue - red) / delta;
    else
        sector = 4.0f + (red - green) / delta;
    *h = sector * 60.0f;
    if (*h < 0.0f)
        *h += 360.0f;
    return 1;
}

int rk_hsv_to_rgb(float h, float s, float v, unsigned char* r, unsigned char* g, unsigned char* b)
{
    if (!r || !g || !b || !(h >= 0.0f) || !(s >= 0.0f) || !(v >= 0.0f))
        return 0;
    float const position = h / 60.0f;
    float const sector = std::floor(position);
    float const fraction = position - sector;
    float const p = v * (1.0f - s);
    float const q = v * (1.0f - s * fraction);
    float const t = v * (1.0f - s * (1.0f - fraction));
    float red = v, green = v, blue = v;
    switch (sector <= 6.0f ? static_cast<int>(sector) : 7) {
    case 0:
    case 6:
        green = t, blue = p;
        break;
    case 1:
        red = q, blue = p;
        break;
    case 2:
        red = p, blue = t;
        break;
    case 3:
        red = p, green = q;
        break;
    case 4:
        red = t, green = p;
        break;
    case 5:
        green = p, blue = q;
        break;
    }
    *r = toByte(red);
    *g = toByte(green);
    *b = toByte(blue);
    return 1;
}
