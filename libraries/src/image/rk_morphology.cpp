#include "image/rk_morphology.h"

#include "image/rk_image.h"
#include "math/rk_bbox.h"

#include <cstring>

namespace {

struct And {
    static unsigned char of(unsigned char a, unsigned char b, unsigned char c) { return a & b & c; }
};

struct Or {
    static unsigned char of(unsigned char a, unsigned char b, unsigned char c) { return a | b | c; }
};

/// out[x] = a[x] op b[x] op c[x]. Out is none of the others, which lets the compiler take a vector of pixels at a time.
template <class Op>
void combine(unsigned char const* a, unsigned char const* b, unsigned char const* c, unsigned char* __restrict out, size_t count)
{
    for (size_t x = 0; x < count; ++x)
        out[x] = Op::of(a[x], b[x], c[x]);
}

bool oneChannel(rk_image const* image)
{
    return rk_image_valid(image) && image->channels == 1;
}

template <class Op> int wholeImage(rk_image const* source, rk_image* target, rk_image* scratch)
{
    if (!oneChannel(source) || !oneChannel(target) || !oneChannel(scratch) || source->size != target->size ||
        source->size != scratch->size || scratch->data == source->data || scratch->data == target->data)
        return 0;
    size_t const width = source->width;
    size_t const height = source->height;
    if (height < 3)
        return 1;
    // The interior rows lie one behind the other: the first pass is a single run over all of them.
    combine<Op>(source->data, source->data + width, source->data + 2 * width, scratch->data + width, (height - 2) * width);
    for (size_t y = 1; y + 1 < height && width > 2; ++y) {
        unsigned char const* const row = scratch->data + y * width;
        combine<Op>(row, row + 1, row + 2, target->data + y * width + 1, width - 2);
    }
    return 1;
}

template <class Op> int rectangle(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region)
{
    if (!oneChannel(source) || !rk_image_valid(target) || !oneChannel(scratch) || source->size != target->size ||
        scratch->data == source->data || scratch->data == target->data)
        return 0;
    rk_bbox const box = region ? *region : rk_bbox{0, 0, source->width, source->height};
    if (box.width != scratch->width || box.height != scratch->height || uint64_t(box.x) + box.width > source->width ||
        uint64_t(box.y) + box.height > source->height)
        return 0;
    size_t const stride = source->width;
    size_t const width = box.width;
    size_t const start = box.x + stride * box.y;
    unsigned char const* const in = source->data + start;
    unsigned char* const out = target->data + start;

    for (size_t y = 0; y < box.height; ++y)
        std::memcpy(scratch->data + y * width, in + y * stride, width);
    for (size_t y = 1; y + 1 < box.height && width > 2; ++y) {
        unsigned char const* const row = in + y * stride + 1;
        combine<Op>(row - stride, row, row + stride, scratch->data + y * width + 1, width - 2);
    }
    for (size_t y = 0; y < box.height; ++y)
        std::memcpy(out + y * stride, scratch->data + y * width, width);
    for (size_t y = 1; y + 1 < box.height && width > 2; ++y) {
        unsigned char const* const row = scratch->data + y * width;
        combine<Op>(row, row + 1, row + 2, out + y * stride + 1, width - 2);
    }
    return 1;
}

} // namespace

int rk_erode_image(rk_image const* source, rk_image* target, rk_image* scratch)
{
    return wholeImage<And>(source, target, scratch);
}

int rk_dilate_image(rk_image const* source, rk_image* target, rk_image* scratch)
{
    return wholeImage<Or>(source, target, scratch);
}

int rk_erode_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region)
{
    return rectangle<And>(source, target, scratch, region);
}

int rk_dilate_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region)
{
    return rectangle<Or>(source, target, scratch, region);
}
