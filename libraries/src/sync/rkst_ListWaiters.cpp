#include "sync/rkst_ListWaiters.h"

#include "sync/rkst_Sleep.h"

#include <bit>

namespace rkst {

namespace {

constexpr unsigned int places = 32;

std::atomic<uint32_t> wakeUps[places]; // counts them

unsigned int indexOfThread()
{
    static std::atomic<unsigned int> next = 0;
    thread_local unsigned int const index = next++ % places;
    return index;
}

} // namespace

void wakeListWaiters(uint32_t waiting)
{
    for (; waiting != 0; waiting &= waiting - 1) {
        std::atomic<uint32_t>& word = wakeUps[std::countr_zero(waiting)];
        ++word;
        wakeSleepers(word, true);
    }
}

ListWaiter::ListWaiter()
    : mIndex(indexOfThread())
{
}

uint32_t ListWaiter::getPlace() const
{
    return uint32_t(1) << mIndex;
}

void ListWaiter::look()
{
    mSeen = wakeUps[mIndex];
}

void ListWaiter::sleep(Deadline const& deadline)
{
    sleepWhile(wakeUps[mIndex], mSeen, deadline);
}

} // namespace rkst
