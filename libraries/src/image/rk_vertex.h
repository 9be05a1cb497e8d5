#pragma once

#include "misc/rktl_NodeAllocator.h"

#include <cstdint>

/// One region of an image: its box, how much moved in it, and the region that follows in the list. A list is a chain of nodes
/// that were each made with `new`; it belongs to whoever holds its head and is released with rk_free_vertices.
struct rk_vertex {
    uint32_t x;     ///< left column, pixels
    uint32_t y;     ///< top row
    uint32_t width; ///< extent: largest coordinate minus smallest, so a single pixel has 0
    uint32_t height;
    float motion_score; ///< 0.0 to 1.0
    rk_vertex* next;

    // Nodes come from the stock of list nodes: each frame makes and frees its own.
    static void* operator new(std::size_t size) { return rktl::NodeStock::take(size); }
    static void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return rktl::NodeStock::takeOrNull(size); }
    static void operator delete(void* vertex, std::size_t size) noexcept { rktl::NodeStock::give(vertex, size); }
};

/// Releases the whole chain and leaves the head null. Does nothing for null.
void rk_free_vertices(rk_vertex** head);
