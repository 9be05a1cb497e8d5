#pragma once

#include <cstddef>
#include <memory>
#include <utility>

namespace rktl {

/// Fixed ring of values: an entry that is pushed into a full ring takes the place of the oldest one. Memory is allocated by
/// the constructor and by reserve alone. Not thread-safe.
template <class T> class CircularQueue {
public:
    using value_type = T;

    /// capacity: entries; a ring of capacity 0 forgets each entry at once.
    explicit CircularQueue(unsigned int const& capacity)
        : mStorage(new T[std::size_t(capacity) + 1]())
        , mBegin(mStorage.get())
        , mEnd(mBegin + capacity + 1)
        , mRead(mBegin)
        , mWrite(mBegin)
    {
    }

    CircularQueue(CircularQueue const&) = delete;
    CircularQueue& operator=(CircularQueue const&) = delete;
    virtual ~CircularQueue() = default;

    /// Changes the capacity; a smaller ring keeps the newest entries.
    void reserve(unsigned int const& capacity)
    {
        CircularQueue other(capacity);
        for (; !isEmpty(); pop())
            other.push(front());
        std::swap(mStorage, other.mStorage);
        std::swap(mBegin, other.mBegin);
        std::swap(mEnd, other.mEnd);
        std::swap(mRead, other.mRead);
        std::swap(mWrite, other.mWrite);
    }

    bool isEmpty() const { return mRead == mWrite; }

    void push(T const& value)
    {
        *mWrite = value;
        mWrite = next(mWrite);
        if (mWrite == mRead)
            pop();
    }

    /// The oldest entry, of a ring that is not empty.
    T const& front() const { return *mRead; }

    /// Drops the oldest entry of a ring that is not empty, and whatever its value held.
    void pop()
    {
        *mRead = T();
        mRead = next(mRead);
    }

private:
    T* next(T* slot) const { return slot + 1 == mEnd ? mBegin : slot + 1; }

    std::unique_ptr<T[]> mStorage; // one slot more than the capacity, so that mRead == mWrite means empty
    T* mBegin;
    T* mEnd;
    T* mRead;
    T* mWrite;
};

} // namespace rktl
