#include "misc/rktl_NodeAllocator.h"

#include <cstdint>

namespace rktl {

namespace {

#if defined(__has_feature) // clang's way to ask
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t blocksMax = 0;
#else
constexpr std::size_t blocksMax = 256; // of one size: what 100 objects in view give back between two frames
#endif
constexpr std::size_t step = 16;      // bytes
constexpr std::size_t sizeMax = 1024; // bytes; larger blocks go to the heap

struct Block {
    Block* next;
};

/// What a thread has in stock. A thread's last nodes may go after its stock: those go to the heap.
class Stock {
public:
    ~Stock()
    {
        isOpen = false;
        for (Block*& head : mHeads)
            while (head)
                ::operator delete(pop(head));
    }

    void* take(std::size_t size)
    {
        std::size_t const shelf = shelfOf(size);
        if (!isOpen || shelf >= shelves || !mHeads[shelf])
            return ::operator new((shelf + 1) * step);
        --mCounts[shelf];
        return pop(mHeads[shelf]);
    }

    void give(void* block, std::size_t size) noexcept
    {
        std::size_t const shelf = shelfOf(size);
        if (!isOpen || shelf >= shelves || mCounts[shelf] >= blocksMax) {
            ::operator delete(block);
            return;
        }
        mHeads[shelf] = new (block) Block{mHeads[shelf]};
        ++mCounts[shelf];
    }

private:
    static constexpr std::size_t shelves = sizeMax / step;
    static std::size_t shelfOf(std::size_t size) { return (size - 1) / step; }

    static Block* pop(Block*& head)
    {
        Block* const block = head;
        head = block->next;
        return block;
    }

    static thread_local bool isOpen;

    Block* mHeads[shelves] = {};
    uint16_t mCounts[shelves] = {};
};

thread_local bool Stock::isOpen = true;
thread_local Stock stock;

} // namespace

void* NodeStock::take(std::size_t size)
{
    return stock.take(size);
}

void* NodeStock::takeOrNull(std::size_t size) noexcept
try {
    return stock.take(size);
} catch (std::bad_alloc const&) {
    return nullptr;
}

void NodeStock::give(void* block, std::size_t size) noexcept
{
    stock.give(block, size);
}

} // namespace rktl
