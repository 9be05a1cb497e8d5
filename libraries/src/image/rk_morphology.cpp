#include "image/rk_morphology.h"

#include "image/rk_image.h"
#include "image/rk_row.h"
#include "math/rk_bbox.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

/// out[x] = a[x] op b[x] op c[x]. Out is none of the others.
using Combine = void (*)(
    unsigned char const* a, unsigned char const* b, unsigned char const* c, unsigned char* out, size_t count);

bool oneChannel(rk_image const* image)
{
    return rk_image_valid(image) && image->channels == 1;
}

int wholeImage(rk_image const* source, rk_image* target, rk_image* scratch, Combine combine)
{
    if (!oneChannel(source) || !oneChannel(target) || !oneChannel(scratch) || source->size != target->size ||
        source->size != scratch->size || scratch->data == source->data || scratch->data == target->data)
        return 0;
    size_t const width = source->width;
    size_t const height = source->height;
    if (height < 3)
        return 1;
    // The interior rows lie one behind the other: the first pass is a single run over all of them.
    combine(source->data, source->data + width, source->data + 2 * width, scratch->data + width, (height - 2) * width);
    for (size_t y = 1; y + 1 < height && width > 2; ++y) {
        unsigned char const* const row = scratch->data + y * width;
        combine(row, row + 1, row + 2, target->data + y * width + 1, width - 2);
    }
    return 1;
}

int rectangle(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region, Combine combine)
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
        combine(row - stride, row, row + stride, scratch->data + y * width + 1, width - 2);
    }
    for (size_t y = 0; y < box.height; ++y)
        std::memcpy(out + y * stride, scratch->data + y * width, width);
    for (size_t y = 1; y + 1 < box.height && width > 2; ++y) {
        unsigned char const* const row = scratch->data + y * width;
        combine(row, row + 1, row + 2, out + y * stride + 1, width - 2);
    }
    return 1;
}

/// A two-valued image as one bit a pixel, kept in the bytes of an image that nobody needs meanwhile: the plane as it came, two
/// that the steps read and write in turn, and a row between the two passes of a step.
class BitPlanes {
public:
    /// A storage that is a view of somebody's bytes may lie anywhere, also where words must not.
    static bool fit(rk_image const& image, rk_image const& storage)
    {
        size_t const words = (image.width + 63) / 64;
        return reinterpret_cast<uintptr_t>(storage.data) % alignof(uint64_t) == 0 &&
            8 * (3 * words * image.height + words + 2) <= image.size;
    }

    BitPlanes(rk_image const& image, rk_image& storage)
        : mWidth(image.width)
        , mHeight(image.height)
        , mWords((mWidth + 63) / 64)
        , mFirst(static_cast<uint64_t*>(static_cast<void*>(storage.data)))
        , mNow(mFirst)
        , mNext(mFirst + mWords * mHeight)
        , mSpare(mNext + mWords * mHeight)
        , mBetween(mSpare + mWords * mHeight + 1)
    {
        mBetween[-1] = mBetween[mWords] = 0;
    }

    /// False when the image has other values too.
    bool pack(rk_image const& image)
    {
        for (size_t y = 0; y < mHeight; ++y) {
            unsigned char const* const row = image.data + y * mWidth;
            if (!rk_row().two_valued(row, mWidth))
                return false;
            rk_row().pack(row, mWidth, 255, mFirst + y * mWords);
        }
        return true;
    }

    /// Writes what differs from the plane as it came.
    void unpack(rk_image& image) const
    {
        for (size_t y = 0; y < mHeight; ++y) {
            uint64_t const* const row = mNow + y * mWords;
            size_t const from = static_cast<size_t>(std::mismatch(row, row + mWords, mFirst + y * mWords).first - row);
            if (from < mWords)
                rk_row().unpack(row + from, mWidth - 64 * from, image.data + y * mWidth + 64 * from);
        }
    }

    template <class Op> void step(Op op)
    {
        memcpy(mNext, mNow, 8 * mWords);
        for (size_t y = 1; y + 1 < mHeight; ++y)
            row(mNow + y * mWords, mNext + y * mWords, op);
        memcpy(mNext + (mHeight - 1) * mWords, mNow + (mHeight - 1) * mWords, 8 * mWords);
        mNow = std::exchange(mNext, mNow == mFirst ? mSpare : mNow);
    }

private:
    template <class Op> void row(uint64_t const* in, uint64_t* __restrict out, Op op) const
    {
        uint64_t* const __restrict between = mBetween;
        uint64_t const* const above = in - mWords;
        uint64_t const* const below = in + mWords;
        uint64_t any = 0;
        for (size_t i = 0; i < mWords; ++i)
            any |= between[i] = op(above[i], in[i], below[i]);
        uint64_t const* const left = between - 1;
        uint64_t const* const right = between + 1;
        if (any)
            for (size_t i = 0; i < mWords; ++i)
                out[i] = op(between[i] << 1 | left[i] >> 63, between[i], between[i] >> 1 | right[i] << 63);
        else
            memset(out, 0, 8 * mWords);
        // The outer columns stay as they were, and bits behind the row 0.
        out[0] = (out[0] & ~uint64_t(1)) | (in[0] & 1);
        uint64_t const last = uint64_t(1) << (mWidth - 1) % 64;
        out[mWords - 1] = (out[mWords - 1] & (last - 1)) | (in[mWords - 1] & last);
    }

    size_t const mWidth;
    size_t const mHeight;
    size_t const mWords; // of a row
    uint64_t* const mFirst;
    uint64_t* mNow;
    uint64_t* mNext;
    uint64_t* const mSpare;
    uint64_t* const mBetween; // with a word of 0 on either side
};

} // namespace

int rk_erode_image(rk_image const* source, rk_image* target, rk_image* scratch)
{
    return wholeImage(source, target, scratch, rk_row().and3);
}

int rk_dilate_image(rk_image const* source, rk_image* target, rk_image* scratch)
{
    return wholeImage(source, target, scratch, rk_row().or3);
}

int rk_erode_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region)
{
    return rectangle(source, target, scratch, region, rk_row().and3);
}

int rk_dilate_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region)
{
    return rectangle(source, target, scratch, region, rk_row().or3);
}

int rk_morphology(rk_image* image, rk_image* scratch, rk_morphology_step const* steps, int count)
{
    bool const fits = oneChannel(image) && oneChannel(scratch) && image->size == scratch->size && image->data != scratch->data;
    if (fits && image->height >= 3 && !rk_row_is_plain() && BitPlanes::fit(*image, *scratch)) {
        BitPlanes planes(*image, *scratch);
        if (planes.pack(*image)) {
            for (int i = 0; i < count; ++i)
                if (steps[i] == rk_step_erode)
                    planes.step([](uint64_t a, uint64_t b, uint64_t c) { return a & b & c; });
                else
                    planes.step([](uint64_t a, uint64_t b, uint64_t c) { return a | b | c; });
            planes.unpack(*image);
            return count;
        }
    }
    int done = 0;
    while (done < count &&
        (steps[done] == rk_step_erode ? rk_erode_image(image, image, scratch) : rk_dilate_image(image, image, scratch)))
        ++done;
    return done;
}
