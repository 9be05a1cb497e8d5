#include "sync/rkst_Sleep.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace rkst {

static_assert(std::atomic<uint32_t>::is_always_lock_free && sizeof(std::atomic<uint32_t>) == sizeof(uint32_t),
    "the kernel compares the word on which waiters sleep, and signal handlers change it");

namespace {

/// The kernel call is no cancellation point, so a sleeper looks this often whether its thread was cancelled.
constexpr unsigned int sliceMilliseconds = 250;

} // namespace

void sleepWhile(std::atomic<uint32_t>& word, uint32_t value, Deadline const& deadline)
{
    for (;;) {
        pthread_testcancel();
        unsigned int const slice = std::min(deadline.remaining(), sliceMilliseconds);
        if (slice == 0)
            return;
        struct { // as this kernel call takes it on every host, whatever the width of time_t
            long seconds;
            long nanoseconds;
        } const limit = {long(slice / 1000), long(slice % 1000) * 1000000};
        if (syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, &limit, nullptr, 0) == 0)
            return;
        if (errno != ETIMEDOUT && errno != EINTR)
            return; // EAGAIN: it has another value
    }
}

void wakeSleepers(std::atomic<uint32_t>& word, bool all)
{
    int const interrupted = errno;
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, all ? INT_MAX : 1, nullptr, nullptr, 0);
    errno = interrupted;
}

} // namespace rkst
