#pragma once

#include "camera/sources/Picture.h"

#include <filesystem>

namespace tools {

/// Writes a camera picture in colour, as PNG or, when the name ends in ".ppm", as binary PPM. Chroma is full-range BT.601, each
/// block's for all of its pixels. Throws std::runtime_error when the file cannot be written.
void writePicture(std::filesystem::path const& path, camera::Picture const& picture);

} // namespace tools
