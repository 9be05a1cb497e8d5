#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace rktl {

/// What comes in at the back and goes out at the front, in one row of memory: for short queues of plain values that are kept for
/// each object in hundreds, where the blocks of a deque lie far from each other. The row has room for four times as many
/// items as there ever were at a time, or less. Iterators are good until the next change. Not thread-safe.
template <class T> class Fifo {
public:
    using value_type = T;
    using iterator = typename std::vector<T>::iterator;
    using const_iterator = typename std::vector<T>::const_iterator;

    bool empty() const { return mFirst == mRow.size(); }
    size_t size() const { return mRow.size() - mFirst; }
    iterator begin() { return mRow.begin() + static_cast<std::ptrdiff_t>(mFirst); }
    iterator end() { return mRow.end(); }
    const_iterator begin() const { return mRow.begin() + static_cast<std::ptrdiff_t>(mFirst); }
    const_iterator end() const { return mRow.end(); }
    T& front() { return mRow[mFirst]; }
    T const& front() const { return mRow[mFirst]; }

    template <class... Values> void emplace_back(Values&&... values)
    {
        if (mRow.size() == mRow.capacity() && mFirst >= mRow.size() / 2) {
            mRow.erase(mRow.begin(), begin());
            mFirst = 0;
        }
        mRow.emplace_back(std::forward<Values>(values)...);
    }
    // These two move what stands behind.
    template <class... Values> void emplace_front(Values&&... values) { emplace(begin(), std::forward<Values>(values)...); }
    template <class... Values> iterator emplace(const_iterator before, Values&&... values)
    {
        return mRow.emplace(before, std::forward<Values>(values)...);
    }

    /// Asks for the memory of both ends, without waiting for it.
    void prefetch() const
    {
        if (empty())
            return;
        __builtin_prefetch(&mRow[mFirst]);
        __builtin_prefetch(&mRow.back());
    }

    /// Its memory is used again later.
    void pop_front()
    {
        if (++mFirst == mRow.size())
            clear();
    }
    iterator erase(const_iterator item) { return mRow.erase(item); }
    void clear()
    {
        mRow.clear();
        mFirst = 0;
    }

private:
    std::vector<T> mRow;
    size_t mFirst = 0; // items before it have gone
};

} // namespace rktl
