#include "detection/rk_conncomp_runs.h"

#include "detection/rk_conncomp.h"
#include "image/rk_row.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t stretch = 64; // pixels that are tried at once

/// The rows of labels that a window can reach, in a strip that scrolls: the row in work, those of the kernel's half height
/// above it, and some more, so that rows move only now and then. Cells without label hold -1, the margins on both sides too.
class Strip {
public:
    static constexpr uint32_t spare = 16; // rows

    static uint64_t cells(rk_image const& image, rk_kernel const& kernel)
    {
        return (uint64_t(image.width) + kernel.width - 1) * (kernel.half_height + spare);
    }

    Strip(int16_t* cells, rk_image const& image, rk_kernel const& kernel)
        : mCells(cells)
        , mStride(image.width + kernel.width - 1)
        , mHalfWidth(kernel.half_width)
        , mReach(kernel.half_height)
        , mRow(kernel.half_height)
    {
        memset(mCells, 0xff, size_t(mStride) * (mReach + spare) * sizeof(int16_t));
    }

    /// The cell of column 0 in the row in work.
    int16_t* row() { return mCells + size_t(mRow) * mStride + mHalfWidth; }
    uint32_t stride() const { return mStride; }

    void next()
    {
        if (++mRow < mReach + spare)
            return;
        size_t const kept = size_t(mReach) * mStride;
        if (mDirty > spare)
            memmove(mCells, mCells + size_t(spare) * mStride, kept * sizeof(int16_t));
        else if (mDirty)
            memset(mCells, 0xff, kept * sizeof(int16_t));
        if (mDirty)
            memset(mCells + kept, 0xff, size_t(spare) * mStride * sizeof(int16_t));
        mDirty = mDirty > spare ? mDirty - spare : 0;
        mRow = mReach;
    }

    /// The row in work gets labels.
    void use() { mDirty = mRow + 1; }

    /// No cell of the rows above the one in work holds a label; before the row itself is used.
    bool isEmptyAbove() const { return mDirty == 0 || mDirty - 1 + mReach < mRow; }

private:
    int16_t* const mCells;
    uint32_t const mStride;
    uint32_t const mHalfWidth;
    uint32_t const mReach;
    uint32_t mRow;
    uint32_t mDirty = 0; // one behind the last row that holds labels
};

/// The cells of the kernel's shape that hold pixels visited before, as distances from a pixel's own cell, in walking order.
struct Window {
    int32_t const* offsets;
    int32_t count;
    int32_t ownRow; // index of the first one in the pixel's own row
    bool hasLeft; // the pixel to the left is among them, so that a label goes on along a run
};

bool prepareWindow(rk_conncomp& conncomp, rk_kernel const& kernel, uint32_t stride, Window& window)
{
    uint32_t const most = kernel.half_height * kernel.width + kernel.half_width;
    if (conncomp.offset_capacity < most) {
        free(conncomp.offsets);
        conncomp.offsets = static_cast<int32_t*>(malloc(most * sizeof(int32_t)));
        conncomp.offset_capacity = conncomp.offsets ? most : 0;
        if (!conncomp.offsets)
            return false;
    }
    window = {conncomp.offsets, 0, 0, kernel.half_width > 0 && kernel.mask[most - 1] != rk_kernel_outside};
    for (uint32_t cell = 0; cell < most; ++cell) {
        if (cell == kernel.half_height * kernel.width)
            window.ownRow = window.count;
        if (kernel.mask[cell] != rk_kernel_outside) {
            int32_t const row = static_cast<int32_t>(cell / kernel.width) - static_cast<int32_t>(kernel.half_height);
            int32_t const column = static_cast<int32_t>(cell % kernel.width) - static_cast<int32_t>(kernel.half_width);
            conncomp.offsets[window.count++] = row * static_cast<int32_t>(stride) + column;
        }
    }
    return true;
}

bool holdsNoOther(int16_t const* cells, size_t count, int16_t label)
{
    bool other = false;
    for (size_t i = 0; i < count; ++i)
        other |= (cells[i] != -1) & (cells[i] != label);
    return !other;
}

class Labelling {
public:
    Labelling(rk_label_set& set, Window const& window, Strip& strip, rk_kernel const& kernel)
        : mSet(set)
        , mWindow(window)
        , mStrip(strip)
        , mHalfWidth(kernel.half_width)
        , mReach(kernel.half_height)
    {
    }

    /// Says whether the rows that windows reach above the row in work are without labels.
    void begin(bool isEmptyAbove) { mAlone = isEmptyAbove; }

    /// The pixels from x up to but not including end of row y are foreground.
    bool run(uint32_t x, uint32_t end, uint32_t y)
    {
        int16_t* const cells = mStrip.row();
        while (x < end) {
            bool single = true;
            int16_t const label = labelOf(cells + x, x, y, single);
            if (label < 0)
                return false;
            uint32_t last = x + 1;
            while (single && mWindow.hasLeft && last < end) {
                uint32_t const next = std::min(last + stretch, end);
                if (!seesOnly(cells, last, next, label))
                    break;
                last = next;
            }
            std::fill(cells + x, cells + last, label);
            rk_label_set_grow(&mSet, static_cast<uint32_t>(label), x, last - 1, y);
            x = last;
            // Close to a seam: pixel by pixel, up to where the stretch that failed would have ended.
            uint32_t const seam = single && mWindow.hasLeft ? std::min(x + stretch, end) : x;
            while (x < seam) {
                int16_t const next = labelOf(cells + x, x, y, single);
                if (next < 0)
                    return false;
                cells[x] = next;
                rk_label_set_grow(&mSet, static_cast<uint32_t>(next), x, x, y);
                ++x;
            }
        }
        return true;
    }

private:
    /// The label of a foreground pixel; -1 when there are too many. single: its window held one label, or none.
    int16_t labelOf(int16_t const* cell, uint32_t x, uint32_t y, bool& single)
    {
        single = true;
        int16_t current = -1;
        for (int32_t i = mAlone ? mWindow.ownRow : 0; i < mWindow.count; ++i) {
            int16_t const label = cell[mWindow.offsets[i]];
            if (label < 0 || label == current)
                continue;
            if (current >= 0) {
                rk_label_set_join(&mSet, static_cast<uint32_t>(current), static_cast<uint32_t>(label));
                single = false;
                return label;
            }
            current = label;
        }
        return current >= 0 ? current : static_cast<int16_t>(rk_label_set_open(&mSet, x, y));
    }

    /// Whether all that the windows of the pixels from x to end can hold, themselves apart, is this label or none. The pixel
    /// left of x has the label already or is about to get it.
    bool seesOnly(int16_t const* cells, uint32_t x, uint32_t end, int16_t label) const
    {
        int64_t const left = int64_t(x) - mHalfWidth;
        if (!holdsNoOther(cells + left, mHalfWidth, label))
            return false;
        if (mAlone)
            return true;
        size_t const count = end - x + 2 * mHalfWidth;
        for (uint32_t row = 1; row <= mReach; ++row)
            if (!holdsNoOther(cells + left - int64_t(row) * mStrip.stride(), count, label))
                return false;
        return true;
    }

    rk_label_set& mSet;
    Window const& mWindow;
    Strip& mStrip;
    uint32_t const mHalfWidth;
    uint32_t const mReach;
    bool mAlone = true; // no labels above the row in work
};

/// Calls run(first, end) for each run of ones among the first width bits.
template <class Run> bool forEachRun(uint64_t const* bits, uint32_t width, Run run)
{
    uint32_t const words = (width + 63) / 64;
    uint32_t first = 0;
    bool inside = false;
    for (uint32_t i = 0; i < words; ++i) {
        uint64_t word = inside ? ~bits[i] : bits[i];
        while (word) {
            uint32_t const at = 64 * i + static_cast<uint32_t>(__builtin_ctzll(word));
            if (inside && !run(first, at))
                return false;
            first = at;
            inside = !inside;
            word = ~word & (~uint64_t(0) << at % 64);
        }
    }
    return !inside || run(first, width);
}

bool prepareRows(rk_conncomp& conncomp, uint64_t cells, uint64_t words)
{
    if (cells > INT32_MAX) // offsets between rows
        return false;
    if (conncomp.strip_capacity >= cells && conncomp.bit_capacity >= words)
        return true;
    free(conncomp.strip);
    free(conncomp.bits);
    conncomp.strip = static_cast<int16_t*>(malloc(cells * sizeof(int16_t)));
    conncomp.bits = static_cast<uint64_t*>(malloc(words * sizeof(uint64_t)));
    conncomp.strip_capacity = conncomp.strip ? cells : 0;
    conncomp.bit_capacity = conncomp.bits ? words : 0;
    return conncomp.strip && conncomp.bits;
}

} // namespace

int rk_label_runs(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel)
{
    conncomp->set.count = 0;
    uint64_t const words = (uint64_t(image->width) + 63) / 64;
    if (!prepareRows(*conncomp, Strip::cells(*image, *kernel), words))
        return 0;
    Strip strip(conncomp->strip, *image, *kernel);
    Window window;
    if (!prepareWindow(*conncomp, *kernel, strip.stride(), window))
        return 0;
    if (threshold > 255)
        return 1; // no byte reaches it
    Labelling labelling(conncomp->set, window, strip, *kernel);
    for (uint32_t y = 0; y < image->height; ++y, strip.next()) {
        rk_row().pack(image->data + size_t(y) * image->width, image->width, static_cast<uint8_t>(threshold), conncomp->bits);
        bool used = false;
        bool const done = forEachRun(conncomp->bits, image->width, [&](uint32_t first, uint32_t end) {
            if (!used) {
                labelling.begin(strip.isEmptyAbove());
                strip.use();
                used = true;
            }
            return labelling.run(first, end, y);
        });
        if (!done)
            return 0;
    }
    return 1;
}
