#include "image/rk_histogram.h"
#include "image/rk_image.h"
#include "math/rk_bbox.h"
#include "math/rk_truncate.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <numeric>

// A pixel is black when none of its channels is above this.
static constexpr unsigned char DARKEST = 16;

unsigned int rk_histogram_index(unsigned char red, unsigned char green, unsigned char blue)
{
    return red >> 6 | (green >> 6) << 2 | (blue >> 6) << 4;
}

int rk_histogram_bin_to_rgb(unsigned int bin, uint32_t* rgb)
{
    if (bin >= RK_HISTOGRAM_CELLS || !rgb)
        return 0;
    uint32_t const red = ((bin & 3) << 6) + 32;
    uint32_t const green = ((bin * 16) & 192) + 32;
    uint32_t const blue = ((bin * 4) & 192) + 32;
    *rgb = red | green << 8 | blue << 16;
    return 1;
}

int rk_histogram_reset(rk_histogram* histogram)
{
    if (!histogram)
        return 0;
    *histogram = rk_histogram{};
    return 1;
}

int rk_histogram_cpy(rk_histogram* target, rk_histogram const* source)
{
    if (!target || !source)
        return 0;
    *target = *source;
    return 1;
}

static bool fits(rk_bbox const& box, rk_image const& image)
{
    return image.data && uint64_t(box.x) + box.width <= image.width && uint64_t(box.y) + box.height <= image.height;
}

/// One row of a region: width pixels of four channels, mask null or a byte for each of them.
static void add_row(rk_histogram& histogram, unsigned char const* pixel, unsigned char const* mask, uint32_t width, uint32_t row)
{
    for (uint32_t col = 0; col < width; ++col, pixel += 4) {
        if (mask && mask[col] == 0)
            continue;
        unsigned char const blue = pixel[0];
        unsigned char const green = pixel[1];
        unsigned char const red = pixel[2];
        if (blue <= DARKEST && green <= DARKEST && red <= DARKEST)
            continue;
        unsigned int const cell = rk_histogram_index(red, green, blue);
        if (mask && cell == 0)
            continue;
        ++histogram.counts[cell];
        histogram.sum_x[cell] += col;
        histogram.sum_y[cell] += row;
    }
}

static uint32_t sum_of_counts(rk_histogram const& histogram)
{
    return std::accumulate(histogram.counts, histogram.counts + RK_HISTOGRAM_CELLS, uint32_t(0));
}

int rk_histogram_set(rk_histogram* histogram, rk_image const* image, rk_image const* mask, rk_bbox const* box)
{
    if (!histogram || !image || image->channels != 4 || (mask && mask->channels != 1))
        return 0;
    rk_histogram_reset(histogram);
    if (!box || !fits(*box, *image) || (mask && !fits(*box, *mask)))
        return 0;
    for (uint32_t row = 0; row < box->height; ++row) {
        size_t const y = size_t(box->y) + row;
        unsigned char const* const pixels = image->data + 4 * (box->x + y * image->width);
        unsigned char const* const mask_row = mask ? mask->data + box->x + y * mask->width : nullptr;
        add_row(*histogram, pixels, mask_row, box->width, row);
    }
    histogram->total = sum_of_counts(*histogram);
    return 1;
}

int rk_histogram_add(rk_histogram* histogram, rk_histogram const* other)
{
    return rk_histogram_add_part(histogram, other, 0, 0);
}

int rk_histogram_add_part(rk_histogram* histogram, rk_histogram const* part, uint32_t dx, uint32_t dy)
{
    if (!histogram || !part)
        return 0;
    if (part->total == 0)
        return 1;
    for (unsigned int i = 0; i < RK_HISTOGRAM_CELLS; ++i) {
        histogram->counts[i] += part->counts[i];
        histogram->sum_x[i] += part->sum_x[i] + part->counts[i] * dx;
        histogram->sum_y[i] += part->sum_y[i] + part->counts[i] * dy;
    }
    histogram->total += part->total;
    return 1;
}

static uint32_t difference(uint32_t a, uint32_t b)
{
    return a > b ? a - b : 0;
}

int rk_histogram_sub(rk_histogram* histogram, rk_histogram const* other)
{
    if (!histogram || !other)
        return 0;
    if (other->total == 0)
        return 1;
    for (unsigned int i = 0; i < RK_HISTOGRAM_CELLS; ++i) {
        histogram->counts[i] = difference(histogram->counts[i], other->counts[i]);
        histogram->sum_x[i] = difference(histogram->sum_x[i], other->sum_x[i]);
        histogram->sum_y[i] = difference(histogram->sum_y[i], other->sum_y[i]);
    }
    histogram->total = sum_of_counts(*histogram);
    return 1;
}

static void blend(uint32_t* own, uint32_t const* theirs, float complement, float weight)
{
    for (unsigned int i = 0; i < RK_HISTOGRAM_CELLS; ++i) {
        uint32_t const kept = rk_truncate_u32(static_cast<float>(own[i]) * complement);
        own[i] = kept + rk_truncate_u32(static_cast<float>(theirs[i]) * weight);
    }
}

int rk_histogram_avg(rk_histogram* histogram, rk_histogram const* other, float weight)
{
    if (!histogram || !other || other->total == 0)
        return 0;
    if (histogram->total == 0)
        return rk_histogram_cpy(histogram, other);
    float const complement = 1.0f - weight;
    blend(histogram->counts, other->counts, complement, weight);
    blend(histogram->sum_x, other->sum_x, complement, weight);
    blend(histogram->sum_y, other->sum_y, complement, weight);
    histogram->total = sum_of_counts(*histogram);
    return 1;
}

int rk_histogram_xy(rk_histogram const* histogram, unsigned int bin, uint32_t* x, uint32_t* y)
{
    if (!histogram || bin >= RK_HISTOGRAM_CELLS || !x || !y || histogram->counts[bin] == 0)
        return 0;
    *x = histogram->sum_x[bin] / histogram->counts[bin];
    *y = histogram->sum_y[bin] / histogram->counts[bin];
    return 1;
}

float rk_histogram_get_bin(rk_histogram const* histogram, unsigned int bin)
{
    return static_cast<float>(histogram->counts[bin]) / static_cast<float>(histogram->total);
}

float rk_histogram_bin_pct(rk_histogram const* histogram, unsigned int bin)
{
    if (!histogram || histogram->total == 0 || bin >= RK_HISTOGRAM_CELLS)
        return -1.0f;
    return rk_histogram_get_bin(histogram, bin);
}

int rk_histogram_max_bin(rk_histogram const* histogram, uint32_t* out_count)
{
    if (!histogram)
        return -1;
    uint32_t const* const fullest = std::max_element(histogram->counts, histogram->counts + RK_HISTOGRAM_CELLS);
    if (out_count)
        *out_count = *fullest;
    return static_cast<int>(fullest - histogram->counts);
}

static bool comparable(rk_histogram const* a, rk_histogram const* b)
{
    return a && b && a->total != 0 && b->total != 0;
}

float rk_histogram_compare(rk_histogram const* a, rk_histogram const* b)
{
    if (!comparable(a, b))
        return 0.0f;
    float sum = 0.0f;
    for (unsigned int i = 0; i < RK_HISTOGRAM_CELLS; ++i) {
        if ((a->counts[i] | b->counts[i]) == 0)
            continue;
        float const p = rk_histogram_get_bin(a, i);
        float const q = rk_histogram_get_bin(b, i);
        sum += (p - q) * (p - q) / (p + q);
    }
    return sum * -0.5f + 1.0f;
}

float rk_histogram_distance(rk_histogram const* a, rk_histogram const* b)
{
    return comparable(a, b) ? 1.0f - rk_histogram_compare(a, b) : 1.0f;
}

float rk_histogram_overlap(rk_histogram const* a, rk_histogram const* b)
{
    if (!comparable(a, b))
        return 0.0f;
    float sum = 0.0f;
    for (unsigned int i = 0; i < RK_HISTOGRAM_CELLS; ++i)
        sum += std::min(rk_histogram_get_bin(a, i), rk_histogram_get_bin(b, i));
    return sum;
}

int rk_histogram_print(char const* path, rk_histogram const* histogram)
{
    if (!path || !histogram)
        return 0;
    FILE* const file = std::fopen(path, "w");
    if (!file)
        return 0;
    std::fputs("Index,Color,Pct,Value\n", file);
    for (unsigned int bin = 0; bin < RK_HISTOGRAM_CELLS; ++bin) {
        uint32_t rgb = 0;
        rk_histogram_bin_to_rgb(bin, &rgb);
        std::fprintf(file, "%d,#%02x%02x%02x,%f,%d\n", static_cast<int>(bin), unsigned(rgb & 255), unsigned(rgb >> 8 & 255),
            unsigned(rgb >> 16), static_cast<double>(rk_histogram_bin_pct(histogram, bin)),
            static_cast<int>(histogram->counts[bin]));
    }
    bool const written = !std::ferror(file);
    return std::fclose(file) == 0 && written;
}
