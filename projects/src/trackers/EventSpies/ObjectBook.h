#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// What a spy remembers of each object from frame to frame, in the order of the frame's objects. It is brought in line with a
/// frame in one pass: begin, then keep or add for the objects of the frame in their order, then end. Whatever was neither kept
/// nor added is gone, and forgotten unless the spy wants it to stay. Nothing moves while the objects stay the same. Not
/// thread-safe.
template <class T> class ObjectBook {
public:
    void clear() { mEntries.clear(); }
    size_t size() const { return mEntries.size(); }
    /// Calls each value's prefetch: for values that point to memory of their own, to have it at hand when they are asked for.
    void prefetch() const
    {
        for (Entry const& entry : mEntries)
            entry.value.prefetch();
    }

    void begin() { mRead = mKept = 0; }

    /// What is known of the object; null when nothing is. Asks stays(id, value) about the objects that come before it and were
    /// not kept. Good until the next call.
    template <class Stays> T* keep(uint32_t id, Stays stays)
    {
        while (mRead < mEntries.size() && order(mEntries[mRead].id) < order(id))
            pass(stays);
        return mRead < mEntries.size() && mEntries[mRead].id == id ? &take() : nullptr;
    }
    T* keep(uint32_t id) { return keep(id, forgets); }

    /// To be called when keep has found nothing. Good until the next call.
    T& add(uint32_t id, T value)
    {
        if (mKept < mRead) {
            mEntries[mKept] = {id, std::move(value)};
        } else {
            mEntries.insert(mEntries.begin() + static_cast<std::ptrdiff_t>(mKept), Entry{id, std::move(value)});
            ++mRead;
        }
        return mEntries[mKept++].value;
    }

    /// Forgets the object that was kept or added last.
    void drop() { --mKept; }

    template <class Stays> void end(Stays stays)
    {
        while (mRead < mEntries.size())
            pass(stays);
        mEntries.erase(mEntries.begin() + static_cast<std::ptrdiff_t>(mKept), mEntries.end());
    }
    void end() { end(forgets); }

private:
    struct Entry {
        uint32_t id;
        T value;
    };

    /// Maps of objects are ordered by signed numbers.
    static int32_t order(uint32_t id) { return static_cast<int32_t>(id); }

    static bool forgets(uint32_t, T&) { return false; }

    /// Moves the entry that is to be read to those of this pass.
    T& take()
    {
        if (mKept != mRead)
            mEntries[mKept] = std::move(mEntries[mRead]);
        ++mRead;
        return mEntries[mKept++].value;
    }

    template <class Stays> void pass(Stays& stays)
    {
        if (stays(mEntries[mRead].id, mEntries[mRead].value))
            take();
        else
            ++mRead;
    }

    std::vector<Entry> mEntries;
    size_t mRead = 0; // entries before it were looked at in this pass
    size_t mKept = 0; // entries before it are of this pass
};
