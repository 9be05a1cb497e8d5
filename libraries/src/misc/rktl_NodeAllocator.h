#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <new>
#include <utility>

namespace rktl {

/// Memory for the nodes of lists, sets and maps, and the chunks of deques. With each frame some hundreds go and as many of the
/// same sizes come, for months; blocks that were given back wait in a small stock of the thread that gave them, so that the heap
/// is left alone. A stock is bounded, and goes with its thread. Under the address sanitizer there is none, so that it sees each
/// node's life.
class NodeStock {
public:
    static void* take(std::size_t size);
    static void* takeOrNull(std::size_t size) noexcept;
    static void give(void* block, std::size_t size) noexcept;
};

/// The allocator of containers that live on many small blocks. All are equal.
template <class T> class NodeAllocator {
public:
    using value_type = T;

    NodeAllocator() = default;
    template <class U> NodeAllocator(NodeAllocator<U> const&) noexcept { }

    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t), "the stock knows no other alignment");
        if (count > SIZE_MAX / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(NodeStock::take(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept { NodeStock::give(block, count * sizeof(T)); }

    template <class U> bool operator==(NodeAllocator<U> const&) const noexcept { return true; }
};

template <class K, class V> using NodeMap = std::map<K, V, std::less<K>, NodeAllocator<std::pair<K const, V>>>;

} // namespace rktl
