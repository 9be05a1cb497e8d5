#pragma once

#include <atomic>
#include <cstdint>

namespace rktl {

/// The counter on the heap that all smart pointers to one object share. Copying this copies the reference to the counter
/// and counts nothing; the smart pointers say when a reference comes or goes. Empty while there is nothing to count.
class SharedCount {
public:
    /// Makes a counter with one reference.
    void start() { mCount = new std::atomic<int32_t>(1); }

    /// False when no reference was left: the object went away while it was being copied.
    bool addReference() const { return mCount->fetch_add(1, std::memory_order_relaxed) > 0; }

    /// True for the last reference. What other threads did to the object through theirs is then visible to the caller.
    bool removeReference() const { return mCount->fetch_sub(1, std::memory_order_acq_rel) == 1; }

    /// To be called once, by whoever removed the last reference.
    void free() { delete mCount; }

private:
    std::atomic<int32_t>* mCount = nullptr;
};

} // namespace rktl
