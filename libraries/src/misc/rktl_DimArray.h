#pragma once

#include "misc/rktl_Exception.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace rktl {

/// An array of N dimensions in one block of memory, the first dimension running fastest. Owns its elements.
template <class T, size_t N> class DimArray {
public:
    /// One size per dimension; each element starts as T(). Throws rktl::Exception unless there are N sizes, and for more
    /// than 2^32 - 1 elements.
    explicit DimArray(std::vector<unsigned int> const& sizes)
    {
        if (sizes.size() != N)
            fail("DimArray(...) - dimension mismatch");
        std::copy(sizes.begin(), sizes.end(), mSizes.begin());
        mCount = product(mSizes);
        mData = std::make_unique<T[]>(mCount);
    }
    virtual ~DimArray() = default;
    DimArray(DimArray const& other)
        : mCount(other.mCount)
        , mSizes(other.mSizes)
        , mData(std::make_unique<T[]>(other.mCount))
    {
        std::copy_n(other.mData.get(), mCount, mData.get());
    }
    DimArray(DimArray&& other) noexcept
        : mCount(std::exchange(other.mCount, 0))
        , mSizes(std::exchange(other.mSizes, {}))
        , mData(std::move(other.mData))
    {
    }
    DimArray& operator=(DimArray other) noexcept
    {
        mCount = other.mCount;
        mSizes = other.mSizes;
        mData.swap(other.mData);
        return *this;
    }

    /// Throws rktl::Exception for a dimension from N on.
    unsigned int size(size_t dimension) const
    {
        if (dimension >= N)
            fail("size(...) - dimention out of range");
        return mSizes[dimension];
    }

    /// All elements together.
    uint32_t count() const { return mCount; }

    T& at(unsigned int i, unsigned int j) { return mData[getFlattenIndex(i, j)]; }
    T const& at(unsigned int i, unsigned int j) const { return mData[getFlattenIndex(i, j)]; }

    /// The elements in memory order, count() of them.
    T* data() { return mData.get(); }
    T const* data() const { return mData.get(); }

    /// Place of an element in data(). Throws rktl::Exception on an array without elements, for an index that is not below
    /// its size, and unless there are N of them.
    uint32_t getFlattenIndex(unsigned int i, unsigned int j) const requires(N == 2)
    {
        return flatten(std::array<unsigned int, 2>{i, j});
    }
    uint32_t getFlattenIndex(std::vector<unsigned int> const& indices) const
    {
        if (indices.size() != N)
            fail("getFlattenIndex(...) - index out of range");
        return flatten(indices);
    }

private:
    static uint32_t product(std::array<uint32_t, N> const& sizes)
    {
        if (std::find(sizes.begin(), sizes.end(), 0u) != sizes.end())
            return 0;
        uint64_t count = 1;
        for (uint32_t const size : sizes) {
            count *= size; // both factors are below 2^32
            if (count > std::numeric_limits<uint32_t>::max())
                fail("DimArray(...) - too many elements");
        }
        return static_cast<uint32_t>(count);
    }

    template <class Indices> uint32_t flatten(Indices const& indices) const
    {
        if (!mData || mCount == 0)
            fail("getFlattenIndex(...) - array is null");
        uint32_t place = 0;
        uint32_t stride = 1;
        for (size_t dimension = 0; dimension < N; ++dimension) {
            if (indices[dimension] >= mSizes[dimension])
                fail("getFlattenIndex(...) - index out of range");
            place += stride * indices[dimension];
            stride *= mSizes[dimension];
        }
        return place;
    }

    [[noreturn]] static void fail(char const* text)
    {
        throw Exception("libraries/src/math/../misc/rktl_DimArray", "rktl::DimArray", text);
    }

    uint32_t mCount = 0;
    std::array<uint32_t, N> mSizes{};
    std::unique_ptr<T[]> mData;
};

} // namespace rktl
