#pragma once

#include "sync/rkst_WaitObject.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <span>

namespace rkst {

/// Sleeps that many milliseconds of real time; 0xFFFFFFFF never ends.
void Wait(unsigned int milliseconds);

/// Waits up to the limit for the first object of the list that can be obtained, and obtains it: an auto-reset event is then
/// clear, a mutex locked. index: becomes its position; unchanged when false is answered. Null pointers are skipped.
///
/// Sleeps while there are events in the list only; with other objects it is a poll with a grain of 1 ms. A try (limit 0) that
/// finds nothing takes that millisecond in any case.
bool Wait(std::span<WaitObject* const> objects, unsigned int milliseconds, unsigned int& index);

/// Waits up to the limit for any object of the list, and obtains all that can be had by then. signalled: one bit for each
/// position, all clear when false is answered.
template <std::size_t N>
bool WaitMultiple(std::array<WaitObject*, N> const& objects, unsigned int milliseconds, std::bitset<N>& signalled)
{
    signalled.reset();
    std::array<WaitObject*, N> rest = objects;
    std::array<std::size_t, N> positions;
    for (std::size_t i = 0; i < N; ++i)
        positions[i] = i;

    unsigned int found = 0;
    if (!Wait(rest, milliseconds, found))
        return false;
    signalled.set(positions[found]);
    for (std::size_t count = N - 1; count > 0; --count) {
        rest[found] = rest[count];
        positions[found] = positions[count];
        if (!Wait(std::span(rest.data(), count), 0, found))
            break;
        signalled.set(positions[found]);
    }
    return true;
}

} // namespace rkst
