#include "detection/rk_conncomp_runs.h"

#include "detection/rk_conncomp.h"
#include "image/rk_row.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t leastStretch = 6;  // pixels of a run; fewer are quicker one by one
constexpr uint32_t shortStretch = 16; // close to a seam between labels
constexpr int speckled = 6;           // runs in a word of 64 pixels; more are quicker pixel by pixel

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

/// The foreground of the rows that a window can reach, one bit a pixel, with a word of 0 on both sides, and behind each row the
/// pixels in it whose label differs from that of the labelled pixel before them.
class BitRows {
public:
    static uint64_t words(rk_image const& image, rk_kernel const& kernel)
    {
        return 2 * rowWords(image.width) * (uint64_t(kernel.half_height) + 1);
    }

    BitRows(uint64_t* words, rk_image const& image, rk_kernel const& kernel)
        : mWords(words)
        , mRowWords(rowWords(image.width))
        , mRows(kernel.half_height + 1)
    {
        memset(mWords, 0, 2 * mRows * mRowWords * sizeof(uint64_t));
    }

    uint64_t* row(uint32_t y) { return mWords + y % mRows * 2 * mRowWords + 1; }

    /// Makes row y the row in work. Rows above the image are empty.
    void begin(uint32_t y)
    {
        for (uint32_t i = 0; i < std::min(mRows, rowsAtHand); ++i)
            mAbove[i] = mWords + (y + mRows - i) % mRows * 2 * mRowWords;
        mChanges = row(y) + mRowWords;
        memset(mChanges, 0, (mRowWords - 1) * sizeof(uint64_t));
    }

    /// Says of pixel x in the row in work whether its label is another than that of the labelled pixel before it.
    void setChange(uint32_t x, bool differs) { mChanges[x / 64] |= uint64_t(differs) << x % 64; }

    static constexpr uint32_t most = 57; // columns of a window: what is left of a word that begins at any bit of a byte

    /// Which of count (0 to most) pixels from column x on, which may begin or end outside of the row, are foreground. above: 0 is
    /// the row in work.
    uint64_t foreground(uint32_t above, int64_t x, uint32_t count) const
    {
        return bits(mAbove[above], static_cast<uint64_t>(x + 64)) & ((uint64_t(1) << count) - 1);
    }

    /// Of these the first, and those that differ from the one before: where no label changes, all have the first one's. Not for
    /// the row in work, whose changes still come.
    uint64_t decisive(uint32_t above, int64_t x, uint32_t count) const
    {
        uint64_t const all = foreground(above, x, count);
        return all & ((all ^ (all - 1)) | bits(mAbove[above] + mRowWords, static_cast<uint64_t>(x + 64)));
    }

private:
    static constexpr uint32_t rowsAtHand = 65; // the row in work, and more than fit a window's word

    /// At least `most` bits from this one on.
    static uint64_t bits(uint64_t const* row, uint64_t place)
    {
        if constexpr (std::endian::native == std::endian::little) {
            uint64_t word;
            memcpy(&word, reinterpret_cast<unsigned char const*>(row) + place / 8, sizeof word);
            return word >> place % 8;
        }
        return row[place / 64] >> place % 64 | row[place / 64 + 1] << 1 << (63 - place % 64);
    }

    static uint64_t rowWords(uint32_t width) { return (uint64_t(width) + 63) / 64 + 2; }

    uint64_t* const mWords;
    uint64_t const mRowWords;
    uint32_t const mRows;
    uint64_t const* mAbove[rowsAtHand] = {};
    uint64_t* mChanges = nullptr; // of the row in work
};

/// The cells of the kernel's shape that hold pixels visited before, in walking order: as distances from a pixel's own cell, and,
/// where they are few enough, as bits of a word that has room for all cells of the upper half.
class Window {
public:
    static uint32_t cells(rk_kernel const& kernel) { return kernel.half_height * kernel.width + kernel.half_width; }

    Window(int32_t* offsets, rk_kernel const& kernel, uint32_t stride)
        : mOffsets(offsets)
        , mCells(cells(kernel))
        , mOwnRow(kernel.half_height * kernel.width)
        , mHalfWidth(kernel.half_width)
        , mHalfHeight(kernel.half_height)
        , mWidth(kernel.width)
        , mHasLeft(kernel.half_width > 0 && kernel.mask[mCells - 1] != rk_kernel_outside)
        , mIsWord(mCells <= 64 && mWidth <= BitRows::most)
    {
        for (uint32_t cell = 0; cell < mCells; ++cell) {
            int32_t const row = static_cast<int32_t>(cell / mWidth) - static_cast<int32_t>(mHalfHeight);
            int32_t const column = static_cast<int32_t>(cell % mWidth) - static_cast<int32_t>(mHalfWidth);
            bool const isInside = kernel.mask[cell] != rk_kernel_outside;
            mOffsets[cell] = isInside ? row * static_cast<int32_t>(stride) + column : outside;
            mIsFull &= isInside;
            if (mIsWord && isInside)
                mShape |= uint64_t(1) << cell;
        }
    }

    /// The pixel to the left is in the window, so that a label goes on along a run.
    bool hasLeft() const { return mHasLeft; }

    /// What a pixel finds in its window: the first label in walking order, and the first one that differs from it, which is the
    /// same where there is none. Both are -1 in an empty window.
    struct Found {
        int16_t first;
        int16_t other;
    };

    /// cell: of the pixel, in column x. isEmptyAbove: the rows above are known to hold no label.
    Found find(int16_t const* cell, BitRows const& bits, uint32_t x, bool isEmptyAbove) const
    {
        return mIsWord ? findByBits(cell, labelled(bits, x, isEmptyAbove)) : findByCells(cell, isEmptyAbove ? mOwnRow : 0);
    }

private:
    static constexpr int32_t outside = INT32_MAX;
    static constexpr int stepsAtOnce = 2;

    Found findByCells(int16_t const* cell, uint32_t from) const
    {
        Found found = {-1, -1};
        for (uint32_t i = from; i < mCells && found.first == found.other; ++i)
            if (mOffsets[i] != outside && cell[mOffsets[i]] >= 0) {
                found.other = cell[mOffsets[i]];
                found.first = found.first < 0 ? found.other : found.first;
            }
        return found;
    }

    /// In noise nothing about a window can be foretold, so the first steps go without branches.
    Found findByBits(int16_t const* cell, uint64_t word) const
    {
        if (!word)
            return {-1, -1};
        uint64_t const firstBit = word & -word;
        int16_t const first = cell[mOffsets[__builtin_ctzll(word)]];
        int16_t other = first;
        word ^= firstBit;
        for (int i = 0; i < stepsAtOnce; ++i) {
            word |= firstBit & -static_cast<uint64_t>(word == 0);
            int16_t const label = cell[mOffsets[__builtin_ctzll(word)]];
            other = other == first ? label : other;
            word &= word - 1;
        }
        for (; word && other == first; word &= word - 1)
            other = cell[mOffsets[__builtin_ctzll(word)]];
        return {first, other};
    }

    /// The cells that hold labels, since a pixel visited before has one when it is foreground; of those of a full shape the ones
    /// that decide.
    uint64_t labelled(BitRows const& bits, uint32_t x, bool isEmptyAbove) const
    {
        int64_t const left = int64_t(x) - mHalfWidth;
        uint64_t word = mHalfWidth ? bits.foreground(0, left, mHalfWidth) << mOwnRow : 0;
        uint32_t const above = isEmptyAbove ? 0 : mHalfHeight;
        for (uint32_t i = 1; i <= above; ++i)
            word |= (mIsFull ? bits.decisive(i, left, mWidth) : bits.foreground(i, left, mWidth)) << (mOwnRow - i * mWidth);
        return word & mShape;
    }

    int32_t* const mOffsets;
    uint32_t const mCells;
    uint32_t const mOwnRow; // index of the first cell in the pixel's own row
    uint32_t const mHalfWidth;
    uint32_t const mHalfHeight;
    uint32_t const mWidth;
    bool const mHasLeft;
    bool const mIsWord;
    uint64_t mShape = 0;
    bool mIsFull = true; // no cell is outside the shape
};

bool holdsNoOther(int16_t const* cells, size_t count, int16_t label)
{
    bool other = false;
    for (size_t i = 0; i < count; ++i)
        other |= (cells[i] != -1) & (cells[i] != label);
    return !other;
}

class Labelling {
public:
    Labelling(rk_label_set& set, Window const& window, Strip& strip, BitRows& bits, rk_kernel const& kernel)
        : mSet(set)
        , mWindow(window)
        , mStrip(strip)
        , mBits(bits)
        , mHalfWidth(kernel.half_width)
        , mReach(kernel.half_height)
    {
    }

    /// Says whether the rows that windows reach above the row in work are without labels.
    void begin(bool isEmptyAbove) { mAlone = isEmptyAbove; }

    /// Pixels x to x + 63 of row y, of which those with a bit are foreground.
    bool word(uint64_t bits, uint32_t x, uint32_t y)
    {
        if (__builtin_popcountll(bits & ~(bits << 1)) >= speckled) {
            for (; bits; bits &= bits - 1)
                if (!pixel(x + static_cast<uint32_t>(__builtin_ctzll(bits)), y))
                    return false;
            return true;
        }
        while (bits) {
            uint32_t const first = static_cast<uint32_t>(__builtin_ctzll(bits));
            uint64_t const behind = ~(bits >> first);
            uint32_t const length = behind ? static_cast<uint32_t>(__builtin_ctzll(behind)) : 64;
            if (!run(x + first, x + first + length, y))
                return false;
            bits = first + length < 64 ? bits >> (first + length) << (first + length) : 0;
        }
        return true;
    }

    /// Hands the equivalences on that were found since the last call.
    void joinFound()
    {
        for (uint32_t i = 0; i < mPairs; ++i)
            rk_label_set_join(&mSet, static_cast<uint32_t>(mPair[i].first), static_cast<uint32_t>(mPair[i].other));
        mPairs = 0;
    }

private:
    bool run(uint32_t x, uint32_t end, uint32_t y)
    {
        if (!pixel(x, y))
            return false;
        if (++x + leastStretch > end)
            return pixels(x, end, y);
        if (stretch(x, end, y))
            return true;
        for (uint32_t next; x < end; x = next) {
            next = std::min(x + shortStretch, end);
            if (!stretch(x, next, y) && !pixels(x, next, y))
                return false;
        }
        return true;
    }

    bool pixels(uint32_t x, uint32_t end, uint32_t y)
    {
        while (x < end)
            if (!pixel(x++, y))
                return false;
        return true;
    }

    /// Gives the pixels from x to end the label of the pixel before them, if that is all they can see.
    bool stretch(uint32_t x, uint32_t end, uint32_t y)
    {
        int16_t* const cells = mStrip.row();
        int16_t const label = cells[x - 1];
        if (!mIsSingle || !mWindow.hasLeft() || !seesOnly(cells, x, end, label))
            return false;
        std::fill(cells + x, cells + end, label);
        rk_label_set_grow(&mSet, static_cast<uint32_t>(label), x, end - 1, y);
        return true;
    }

    /// Gives a foreground pixel its label. False when there are too many.
    bool pixel(uint32_t x, uint32_t y)
    {
        int16_t* const cell = mStrip.row() + x;
        Window::Found const found = mWindow.find(cell, mBits, x, mAlone);
        int32_t const label = found.other >= 0 ? found.other : rk_label_set_open(&mSet, x, y);
        if (label < 0)
            return false;
        mBits.setChange(x, label != mLabel);
        *cell = mLabel = static_cast<int16_t>(label);
        rk_label_set_grow(&mSet, static_cast<uint32_t>(label), x, x, y);
        mIsSingle = found.first == found.other;
        mPair[mPairs] = found;
        mPairs += !mIsSingle;
        if (mPairs == pairsAtOnce)
            joinFound();
        return true;
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
    BitRows& mBits;
    uint32_t const mHalfWidth;
    uint32_t const mReach;
    bool mAlone = true;    // no labels above the row in work
    bool mIsSingle = true; // the last pixel's window held one label, or none
    int16_t mLabel = -1;   // of the last pixel

    // Two labels of one blob, to be joined. Pairs wait here, so that a pixel stores one without asking whether there is one.
    static constexpr uint32_t pairsAtOnce = 256;
    Window::Found mPair[pairsAtOnce];
    uint32_t mPairs = 0;
};

/// Room for the strip, the bits and the window, kept from frame to frame.
bool prepare(rk_conncomp& conncomp, rk_image const& image, rk_kernel const& kernel)
{
    uint64_t const cells = Strip::cells(image, kernel);
    uint64_t const bytes = cells * sizeof(int16_t) + BitRows::words(image, kernel) * sizeof(uint64_t) +
        uint64_t(Window::cells(kernel)) * sizeof(int32_t);
    if (cells > INT32_MAX) // distances between rows
        return false;
    if (conncomp.room_size >= bytes)
        return true;
    free(conncomp.room);
    conncomp.room = malloc(bytes);
    conncomp.room_size = conncomp.room ? bytes : 0;
    return conncomp.room;
}

} // namespace

int rk_label_runs(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel)
{
    conncomp->set.count = 0;
    if (!prepare(*conncomp, *image, *kernel))
        return 0;
    if (threshold > 255)
        return 1; // no byte reaches it
    uint64_t* const words = static_cast<uint64_t*>(conncomp->room);
    int32_t* const offsets = reinterpret_cast<int32_t*>(words + BitRows::words(*image, *kernel));
    BitRows bits(words, *image, *kernel);
    Strip strip(reinterpret_cast<int16_t*>(offsets + Window::cells(*kernel)), *image, *kernel);
    Window const window(offsets, *kernel, strip.stride());
    Labelling labelling(conncomp->set, window, strip, bits, *kernel);
    for (uint32_t y = 0; y < image->height; ++y, strip.next()) {
        if (!rk_row().pack(image->data + size_t(y) * image->width, image->width, static_cast<uint8_t>(threshold), bits.row(y)))
            continue;
        bits.begin(y);
        labelling.begin(strip.isEmptyAbove());
        strip.use();
        uint64_t const* const row = bits.row(y);
        for (uint32_t x = 0; x < image->width; x += 64)
            if (row[x / 64] && !labelling.word(row[x / 64], x, y))
                return 0;
    }
    labelling.joinFound();
    return 1;
}
