#pragma once

#include <cstdint>

struct rk_bbox;
struct rk_image;

/// Number of colour cells: 2 bits for each of red, green and blue.
inline constexpr unsigned int RK_HISTOGRAM_CELLS = 64;

/// The colours of a region in 64 cells, with the place of each colour in it. A plain value without pointers: records that
/// hold one copy it with one plain copy.
///
/// The cell of a colour is red in bits 0 and 1, green in bits 2 and 3, blue in bits 4 and 5, each cut to its top two bits.
struct rk_histogram {
    uint32_t counts[RK_HISTOGRAM_CELLS]; // pixels in each cell
    uint32_t sum_x[RK_HISTOGRAM_CELLS];  // sum of the columns of those pixels, counted from the left side of the region
    uint32_t sum_y[RK_HISTOGRAM_CELLS];  // sum of the rows of those pixels, counted from the top of the region
    uint32_t total;                      // sum of all counts
};

static_assert(sizeof(rk_histogram) == 193 * sizeof(uint32_t), "copied as one block of words");

/// All functions that give an int and do not say otherwise: 1 for success, 0 and nothing changed for a null argument.

/// Cell of a colour.
unsigned int rk_histogram_index(unsigned char red, unsigned char green, unsigned char blue);

/// rgb: centre colour of a cell, red in the low byte, then green, then blue. 0 for a bin above 63.
int rk_histogram_bin_to_rgb(unsigned int bin, uint32_t* rgb);

/// Empties the histogram.
int rk_histogram_reset(rk_histogram* histogram);

int rk_histogram_cpy(rk_histogram* target, rk_histogram const* source);

/// Fills the histogram with the pixels of box. Pixels of which no channel is above 16 are left out: they are black and say
/// nothing about colour. With a mask, pixels whose mask byte is 0 are left out, and so is the whole of cell 0.
///
/// image: four channels, blue, green, red and one that plays no part. mask: null, or one channel, read at the same
/// positions with its own row length.
/// 0, and the histogram as it was: no histogram, no image of four channels, or a mask of other than one channel.
/// 0, and the histogram empty: no box, or a box that reaches out of the image or the mask. 1 otherwise.
int rk_histogram_set(rk_histogram* histogram, rk_image const* image, rk_image const* mask, rk_bbox const* box);

/// Cell by cell sum. 1 and no change when other is empty.
int rk_histogram_add(rk_histogram* histogram, rk_histogram const* other);

/// Adds the histogram of a part of the region that begins dx columns and dy rows inside of it. The histograms of parts that
/// make up a region thus give that of the region, to the bit.
int rk_histogram_add_part(rk_histogram* histogram, rk_histogram const* part, uint32_t dx, uint32_t dy);

/// Cell by cell difference that stops at 0; total becomes the sum of what is left. 1 and no change when other is empty.
int rk_histogram_sub(rk_histogram* histogram, rk_histogram const* other);

/// Blends other in: each entry becomes trunc(own * (1 - weight)) + trunc(other's * weight), in single precision, so that
/// small counts fade to 0. An empty histogram becomes a copy of other. weight: 0 to 1. 0 when other is empty.
int rk_histogram_avg(rk_histogram* histogram, rk_histogram const* other, float weight);

/// x, y: mean position of the pixels of a cell in the region, rounded down. 0 for a bin above 63 or an empty cell.
int rk_histogram_xy(rk_histogram const* histogram, unsigned int bin, uint32_t* x, uint32_t* y);

/// Share of a cell. Unguarded: bin is below 64 and total above 0.
float rk_histogram_get_bin(rk_histogram const* histogram, unsigned int bin);

/// Share of a cell; -1 for a null or empty histogram or a bin above 63.
float rk_histogram_bin_pct(rk_histogram const* histogram, unsigned int bin);

/// The lowest-numbered of the fullest cells, its count through out_count (which may be null); 0 when all are empty, -1 for
/// a null histogram.
int rk_histogram_max_bin(rk_histogram const* histogram, uint32_t* out_count);

/// Similarity, 1 for the same shares, 0 for no cell in common: 1 - chi-square / 2, in single precision. 0 when one is null
/// or empty.
float rk_histogram_compare(rk_histogram const* a, rk_histogram const* b);

/// 1 - rk_histogram_compare; 1 when one is null or empty.
float rk_histogram_distance(rk_histogram const* a, rk_histogram const* b);

/// Histogram intersection (Swain and Ballard, 1991): sum of the smaller of the two shares of each cell. 0 when one is null
/// or empty.
float rk_histogram_overlap(rk_histogram const* a, rk_histogram const* b);

/// Writes a table for a person to look at, "Index,Color,Pct,Value", one line a cell. 0 when the file cannot be written.
int rk_histogram_print(char const* path, rk_histogram const* histogram);
