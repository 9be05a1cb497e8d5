#pragma once

#include "support/RgbImage.h"

#include <string_view>

namespace tools {

/// Rows of a line of text, and columns of a character, at scale 1, the gap behind them included.
inline constexpr uint32_t TEXT_ROWS = 9;
inline constexpr uint32_t TEXT_COLUMNS = 6;

/// Writes one line in the built-in font of 5 by 7 pixels, each a square of `scale`, its upper left corner at (x, y); clipped to
/// the picture. Characters that are not printable ASCII become "?".
void drawText(RgbImage& image, int32_t x, int32_t y, std::string_view text, uint32_t scale, Rgb colour);

} // namespace tools
