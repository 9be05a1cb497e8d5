#pragma once

#include "misc/rktl_DimArray.h"
#include "misc/rktl_Exception.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace rktl {

/// Walks the cells of a rectangle inside a DimArray, the first dimension fastest. The array must outlive the iterator.
template <class T, size_t N> class BaseArrayRegionItr {
public:
    /// start, size: one entry for each dimension; what reaches beyond the array is cut off. Throws rktl::Exception for a null
    /// array and for another number of entries.
    BaseArrayRegionItr(
        DimArray<T, N> const* array, std::vector<unsigned int> const& start, std::vector<unsigned int> const& size);
    virtual ~BaseArrayRegionItr() = default;
    BaseArrayRegionItr(BaseArrayRegionItr const&) = default;
    BaseArrayRegionItr& operator=(BaseArrayRegionItr const&) = default;

    /// To the next cell; behind the last one the iterator is finished, and stays so.
    virtual void inc();

    virtual DimArray<T, N> const& getArray() const = 0;

    /// The present cell. Only before the iterator is finished.
    virtual T const* ptrCurrPos() const = 0;

    /// Indices of the present cell in the array.
    virtual std::vector<unsigned int> getCurrPos() const { return {mPosition.begin(), mPosition.end()}; }

    bool isFinished() const { return mFinished; }

protected:
    [[noreturn]] static void fail(char const* text)
    {
        throw Exception("libraries/src/math/../misc/rktl_ArrayRegionItr", "rktl::ArrayRegionItr", text);
    }

    std::array<unsigned int, N> mStart{};
    std::array<unsigned int, N> mEnd{}; // behind the last index
    std::array<unsigned int, N> mPosition{};
    bool mFinished = false;
};

/// The walk that reads.
template <class T, size_t N> class ConstArrayRegionItr final : public BaseArrayRegionItr<T, N> {
public:
    ConstArrayRegionItr(
        DimArray<T, N> const* array, std::vector<unsigned int> const& start, std::vector<unsigned int> const& size)
        : BaseArrayRegionItr<T, N>(array, start, size)
        , mArray(array)
    {
    }

    DimArray<T, N> const& getArray() const override { return *mArray; }

    T const* ptrCurrPos() const override
    {
        size_t place = 0;
        for (size_t dimension = N; dimension-- > 0;)
            place = place * mArray->size(dimension) + this->mPosition[dimension];
        return mArray->data() + place;
    }

private:
    DimArray<T, N> const* mArray;
};

template <class T, size_t N>
BaseArrayRegionItr<T, N>::BaseArrayRegionItr(
    DimArray<T, N> const* array, std::vector<unsigned int> const& start, std::vector<unsigned int> const& size)
{
    if (!array)
        fail("ArrayRegionItr(...) - array is NULL");
    if (size.size() != N)
        fail("ArrayRegionItr(...) - invalid geometry dimentions");
    if (start.size() != N)
        fail("ArrayRegionItr(...) - invalid coordinate dimentions");
    for (size_t dimension = 0; dimension < N; ++dimension) {
        unsigned int const whole = array->size(dimension);
        unsigned int const left = start[dimension] < whole ? whole - start[dimension] : 0;
        mStart[dimension] = start[dimension];
        mEnd[dimension] = start[dimension] + std::min(size[dimension], left);
        mFinished = mFinished || mEnd[dimension] == mStart[dimension];
    }
    mPosition = mStart;
}

template <class T, size_t N> void BaseArrayRegionItr<T, N>::inc()
{
    if (mFinished)
        return;
    for (size_t dimension = 0; dimension < N; ++dimension) {
        if (++mPosition[dimension] < mEnd[dimension])
            return;
        mPosition[dimension] = mStart[dimension];
    }
    mFinished = true;
}

} // namespace rktl
