#pragma once

#include "sync/rkst_Deadline.h"

#include <atomic>
#include <cstdint>

namespace rkst {

/// The two kernel calls (futex) that all waits of this room but those on a mutex stand on.

/// Sleeps once: until word is not value, until a wake-up, or until the deadline. A cancelled thread ends here, at the start of a
/// sleep or within 250 ms of it.
void sleepWhile(std::atomic<uint32_t>& word, uint32_t value, Deadline const& deadline);

/// Wakes one or all of those who sleep on word. Safe in a signal handler; leaves errno alone.
void wakeSleepers(std::atomic<uint32_t>& word, bool all);

} // namespace rkst
