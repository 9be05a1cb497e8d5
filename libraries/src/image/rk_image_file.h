#pragma once

struct rk_image;

/// Images as plain text files: the portable graymap ("P2") and pixmap ("P3") forms of Netpbm without comments, largest value 255.

/// Writes path with ".pgm" added for 1 channel, ".ppm" for 3 (bytes in memory order) or 4 (bytes 2, 1, 0: red first; the fourth
/// is left out). 0 for an empty image, another number of channels, or a file that cannot be written.
int rk_write_image(rk_image const* image, char const* path);

/// Reads the file that path names in full: a graymap into one channel, a pixmap into four, of which the fourth becomes 0.
/// 0, with image as it was, when the file cannot be opened, its header is another, or the pixels are not all there as
/// numbers from 0 to 255.
int rk_read_image(rk_image* image, char const* path);
