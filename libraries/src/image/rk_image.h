#pragma once

#include <cstdint>

struct rk_bbox;

/// A picture as plain bytes: pixels row after row without padding, so that pixel (x, y) starts at byte
/// channels * (x + width * y). Four-channel pictures are blue, green, red and a fourth byte that is free for use: luma in the
/// camera's frames, 0 or 255 elsewhere.
///
/// An empty record has all fields 0, which `rk_image image = {};` gives. A record owns its data, which is of the malloc family,
/// when it came from the operations below, and is released with rk_free_image. A record may also be filled by hand as a view
/// of somebody else's bytes; it must then not be freed or handed to an operation as the target that may be reallocated.
///
/// All operations give 1 for success and 0 for failure unless they say otherwise. They keep no state: an image belongs to the
/// thread that works on it. Where a target is sized, its buffer is used again when it already has the size.
struct rk_image {
    unsigned char* data; ///< null when empty
    uint32_t width;      ///< pixels
    uint32_t height;     ///< pixels
    uint32_t channels;   ///< bytes per pixel: 1, 3 or 4
    uint32_t size;       ///< bytes of data: width * height * channels
};

// ---- memory

/// Fills the fields and allocates zeroed bytes, whatever the record held. When the memory cannot be had, or the size does not
/// fit 32 bits, prints a line to standard output, leaves the record empty and returns 0. A size of 0 bytes has null data.
int rk_init_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels);

/// Keeps the pixels when width, height and channels agree; otherwise frees the data and goes on as rk_init_image.
int rk_ensure_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels);

/// rk_ensure_image, then every byte set to value.
int rk_resize_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels, unsigned char value);

/// Leaves the record empty. Does nothing for null.
void rk_free_image(rk_image* image);

/// Non-zero when the record exists and holds pixels.
int rk_image_valid(rk_image const* image);

/// Byte offset of a pixel that lies in the image.
inline uint32_t rk_image_index(rk_image const* image, uint32_t x, uint32_t y)
{
    return image->channels * (x + image->width * y);
}

inline int32_t rk_clamp(int32_t value, int32_t low, int32_t high)
{
    return value < low ? low : value > high ? high : value;
}

// ---- copies

/// target takes over size, channels and pixels; its buffer is kept when the sizes in bytes agree.
/// A copy of an empty image is empty. 0 for null, or when there is no memory (target is then empty).
int rk_copy_image(rk_image const* source, rk_image* target);

/// Copies the pixels of region to the same place of target, which gets the size and channels of source first. What target holds
/// outside of region stays, when it had that size. 0, with target as it was, when region does not lie inside source.
int rk_copy_image_roi(rk_image const* source, rk_bbox const* region, rk_image* target);

/// Fills target, which has its size already, with the pixels of source from (x, y) on.
/// 0 when the channels differ, an image is empty, or target reaches beyond source.
int rk_crop_image(rk_image const* source, uint32_t x, uint32_t y, rk_image* target);

/// Copies all of source into target at (x, y). 0 when the channels differ, an image is empty, or source reaches beyond target.
int rk_paste_image(rk_image const* source, uint32_t x, uint32_t y, rk_image* target);

/// Sets the outer rows and columns of a one-channel image to value.
/// 0 when border is 0 or twice the border exceeds width or height.
int rk_fill_border(rk_image* image, uint32_t border, unsigned char value);

// ---- sizes. source and target must be two records.

/// Every second pixel of every second row, from (0, 0) on; target becomes width / 2 by height / 2, rounded down.
/// 0 when target has not the channels of source already.
int rk_shrink_image(rk_image const* source, rk_image* target);

/// Each pixel becomes a block of 2 by 2; target gets twice the size and the channels of source.
int rk_grow_image(rk_image const* source, rk_image* target);

/// Nearest neighbour, positions cut to whole pixels, into the size that target has. A position that single precision puts
/// outside of source gives zero bytes. 0 when an image is empty or the channels differ.
int rk_scale_image(rk_image const* source, rk_image* target);

// ---- channels. source and target must be two records.

/// target becomes a one-channel image of the byte `channel` (0 to 3) of each pixel of a four-channel source where it is above
/// threshold, and 0 where it is not.
int rk_extract_channel(rk_image const* source, rk_image* target, uint32_t channel, unsigned char threshold);

/// Writes a one-channel image into byte 3 of a four-channel image of the same width and height.
int rk_add_alpha(rk_image const* gray, rk_image* colour);

/// Turns red, green, blue (3 channels) into blue, green, red, 0 (4 channels).
int rk_inflate_image(rk_image const* source, rk_image* target);
