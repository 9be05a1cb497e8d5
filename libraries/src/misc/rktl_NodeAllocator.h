#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <new>
#include <utility>

namespace rktl {

/// Memory for the nodes of lists, sets and maps. With each frame some hundreds of nodes go and as many of the same sizes come,
/// for months; blocks that were given back wait in a small stock of the thread that gave them, so that the heap is left alone. A
/// stock is bounded, and goes with its thread. Under the address sanitizer there is none, so that it sees each node's life.
class NodeStock {
public:
    static void* take(std::size_t size);
    static void* takeOrNull(std::size_t size) noexcept;
    static void give(void* block, std::size_t size) noexcept;
};

/// The allocator of node-based containers: single elements come from the stock. All are equal.
template <class T> class NodeAllocator {
public:
    using value_type = T;

    NodeAllocator() = default;
    template <class U> NodeAllocator(NodeAllocator<U> const&) noexcept { }

    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t), "the stock knows no other alignment");
        return static_cast<T*>(count == 1 ? NodeStock::take(sizeof(T)) : ::operator new(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept
    {
        if (count == 1)
            NodeStock::give(block, sizeof(T));
        else
            ::operator delete(block);
    }

    template <class U> bool operator==(NodeAllocator<U> const&) const noexcept { return true; }
};

template <class K, class V> using NodeMap = std::map<K, V, std::less<K>, NodeAllocator<std::pair<K const, V>>>;

} // namespace rktl
