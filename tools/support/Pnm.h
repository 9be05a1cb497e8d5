#pragma once

#include "image/rk_image.h"

#include <filesystem>

namespace tools {

/// Binary images of Netpbm with 8 bits a channel: PGM ("P5") for 1 channel, PPM ("P6") for 4, of which the fourth byte is left
/// out.

/// Throws std::runtime_error when the file cannot be written, or image is empty.
void writePnm(std::filesystem::path const& path, rk_image const& image);

/// image: owns its data, or is empty; a PGM becomes 1 channel, a PPM 4 with a fourth byte of 0. Throws std::runtime_error, with
/// image as it was, unless the file holds one such image of at most 2^24 pixels and all its bytes.
void readPnm(std::filesystem::path const& path, rk_image& image);

} // namespace tools
