#pragma once

#include "misc/rktl_NodeAllocator.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace rktl {

/// A value that copies share until one of them changes it. For values that are copied for every frame and changed rarely, or
/// only once the copies are gone. Different threads may use different copies; one copy belongs to one thread at a time.
template <class T> class CopyOnWrite {
public:
    /// A default value, shared by all that are made so.
    CopyOnWrite()
        : CopyOnWrite(none())
    {
    }
    explicit CopyOnWrite(T value)
        : mShared(new Shared{std::move(value)})
    {
    }
    CopyOnWrite(CopyOnWrite const& other)
        : mShared(other.mShared)
    {
        mShared->references.fetch_add(1, std::memory_order_relaxed);
    }
    /// What was moved from can only be assigned to, or destroyed.
    CopyOnWrite(CopyOnWrite&& other) noexcept
        : mShared(std::exchange(other.mShared, nullptr))
    {
    }
    CopyOnWrite& operator=(CopyOnWrite other) noexcept
    {
        std::swap(mShared, other.mShared);
        return *this;
    }
    ~CopyOnWrite()
    {
        if (mShared && mShared->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete mShared;
    }

    T const& operator*() const { return mShared->value; }
    T const* operator->() const { return &mShared->value; }

    /// The value to be changed: it is this copy's alone from here on. References into it that were taken before are void: they
    /// show the value that the others keep, which goes with the last of them.
    T& change()
    {
        // Acquire: what a copy that has gone meanwhile read of the value, it read before we write.
        if (mShared->references.load(std::memory_order_acquire) != 1)
            *this = CopyOnWrite(mShared->value);
        return mShared->value;
    }

private:
    struct Shared {
        T value;
        std::atomic<int32_t> references{1};

        static void* operator new(std::size_t size) { return NodeStock::take(size); }
        static void operator delete(void* shared, std::size_t size) noexcept { NodeStock::give(shared, size); }
    };

    static CopyOnWrite const& none()
    {
        static CopyOnWrite const& value = *new CopyOnWrite(T()); // stays to the end: other statics may share it
        return value;
    }

    Shared* mShared;
};

} // namespace rktl
