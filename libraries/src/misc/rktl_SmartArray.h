#pragma once

#include "misc/rktl_Exception.h"
#include "misc/rktl_SharedCount.h"

#include <cstdint>

namespace rktl {

/// Reference-counted array that gives out constant access only. The elements die with the last array that shares them.
/// Threads: as rktl::ConstSmartPtr.
template <class T> class ConstSmartArray {
public:
    ConstSmartArray() = default;

    /// Takes data over, which came from new[]; null counts nothing and has size 0. size: in elements.
    ConstSmartArray(T* data, uint32_t size)
        : mData(data)
        , mSize(data ? size : 0)
    {
        if (mData)
            mCount.start();
    }

    /// Throws rktl::Exception when the source's elements were deleted meanwhile; so does the assignment.
    ConstSmartArray(ConstSmartArray const& source)
    {
        share(source.mData, source.mSize, source.mCount, "copy constructor - rhs deleted as it was being copied");
    }

    ConstSmartArray& operator=(ConstSmartArray const& source)
    {
        if (this != &source)
            share(source.mData, source.mSize, source.mCount, "operator=() - rhs deleted as it was being copied");
        return *this;
    }

    virtual ~ConstSmartArray() { ConstSmartArray::removeReference(); }

    /// The first element; throws rktl::Exception for null.
    virtual T const& operator*() const { return *checked(); }

    /// Throws rktl::Exception for null and for an index at or past the size.
    virtual T const& operator[](unsigned int index) const { return *checked(index); }

    /// Null for null. The elements stay ours.
    T const* get() const { return mData; }

    /// In elements.
    uint32_t size() const { return mSize; }

    explicit operator bool() const { return mData != nullptr; }

    /// By the address of the elements.
    bool operator==(ConstSmartArray const& other) const { return mData == other.mData; }

    /// Becomes null, and deletes the elements when this was their last reference.
    virtual void removeReference()
    {
        if (!mData)
            return;
        if (mCount.removeReference()) {
            mCount.free();
            delete[] mData;
        }
        mData = nullptr;
        mSize = 0;
        mCount = SharedCount();
    }

protected:
    T* checked() const
    {
        if (!mData)
            throw Exception(path, className, "operator*() - pointer is NULL!");
        return mData;
    }

    T* checked(unsigned int index) const
    {
        if (!mData)
            throw Exception(path, className, "operator[]() - pointer is NULL!");
        if (index >= mSize)
            throw Exception(path, className, "operator[]() - index out of range!");
        return mData + index;
    }

    T* data() const { return mData; }

private:
    static constexpr char const* path = "libraries/src/misc/rktl_SmartArray";
    static constexpr char const* className = "rktl::SmartArray";

    /// Takes the arguments by value and counts before it drops what it held: the source may be part of that.
    void share(T* data, uint32_t size, SharedCount count, char const* failure)
    {
        bool const alive = !data || count.addReference();
        removeReference();
        if (!alive)
            throw Exception(path, className, failure);
        mData = data;
        mSize = size;
        mCount = data ? count : SharedCount();
    }

    T* mData = nullptr;
    uint32_t mSize = 0; // elements
    SharedCount mCount;
};

/// Reference-counted array whose elements can be changed, except through a constant array. A ConstSmartArray can be made of
/// it, and both share the count.
template <class T> class SmartArray : public ConstSmartArray<T> {
public:
    using ConstSmartArray<T>::ConstSmartArray;
    using ConstSmartArray<T>::operator*;
    using ConstSmartArray<T>::operator[];
    using ConstSmartArray<T>::get;

    T& operator*() { return *this->checked(); }
    T& operator[](unsigned int index) { return *this->checked(index); }
    T* get() { return this->data(); }
};

} // namespace rktl
