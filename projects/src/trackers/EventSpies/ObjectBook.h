#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// What a spy remembers of each object from frame to frame, in the order of the frame's objects. It is brought in line with a
/// frame in one pass: begin, then keep or add for the objects of the frame in their order, then end. Whatever was neither kept
/// nor added is gone. Nothing moves while the objects stay the same. Not thread-safe.
template <class T> class ObjectBook {
public:
    void clear() { mEntries.clear(); }

    void begin() { mRead = mKept = 0; }

    /// What is known of the object; null when nothing is. Tells gone(id, value) of the objects that come before it and were not
    /// kept. Good until the next call.
    template <class Gone> T* keep(uint32_t id, Gone gone)
    {
        while (mRead < mEntries.size() && order(mEntries[mRead].id) < order(id))
            pass(gone);
        if (mRead == mEntries.size() || mEntries[mRead].id != id)
            return nullptr;
        if (mKept != mRead)
            mEntries[mKept] = std::move(mEntries[mRead]);
        ++mRead;
        return &mEntries[mKept++].value;
    }
    T* keep(uint32_t id)
    {
        return keep(id, [](uint32_t, T&) {});
    }

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

    template <class Gone> void end(Gone gone)
    {
        while (mRead < mEntries.size())
            pass(gone);
        mEntries.erase(mEntries.begin() + static_cast<std::ptrdiff_t>(mKept), mEntries.end());
    }
    void end()
    {
        end([](uint32_t, T&) {});
    }

private:
    struct Entry {
        uint32_t id;
        T value;
    };

    /// Maps of objects are ordered by signed numbers.
    static int32_t order(uint32_t id) { return static_cast<int32_t>(id); }

    template <class Gone> void pass(Gone& gone)
    {
        gone(mEntries[mRead].id, mEntries[mRead].value);
        ++mRead;
    }

    std::vector<Entry> mEntries;
    size_t mRead = 0; // entries before it were looked at in this pass
    size_t mKept = 0; // entries before it are of this pass
};
