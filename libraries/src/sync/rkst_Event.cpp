#include "sync/rkst_Event.h"

#include "sync/rkst_Deadline.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace rkst {

namespace {

static_assert(std::atomic<uint32_t>::is_always_lock_free && sizeof(std::atomic<uint32_t>) == sizeof(uint32_t),
    "the kernel compares the word on which waiters sleep, and signal handlers change it");

/// The kernel call is no cancellation point, so a thread looks this often whether it was cancelled.
constexpr unsigned int sliceMilliseconds = 250;

bool take(rk_event_object& state)
{
    return state.manualReset ? state.signalled.load() != 0 : state.signalled.exchange(0) != 0;
}

void wake(rk_event_object& state)
{
    int const interrupted = errno;
    syscall(SYS_futex, &state.signalled, FUTEX_WAKE_PRIVATE, state.manualReset ? INT_MAX : 1, nullptr, nullptr, 0);
    errno = interrupted;
}

/// One sleep: until a wake-up, until the word is set, or until the deadline.
void sleepWhileClear(rk_event_object& state, Deadline const& deadline)
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
        if (syscall(SYS_futex, &state.signalled, FUTEX_WAIT_PRIVATE, 0, &limit, nullptr, 0) == 0)
            return;
        if (errno != ETIMEDOUT && errno != EINTR)
            return; // EAGAIN: it is set
    }
}

} // namespace

Event::Event(bool manualReset, bool initiallySignalled)
    : rktl::SmartPtr<rk_event_object>(new rk_event_object{initiallySignalled, manualReset})
{
}

bool Event::wait(unsigned int milliseconds) const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    if (take(*state))
        return true;
    if (milliseconds == 0)
        return false;
    sleepWhileClear(*state, Deadline(milliseconds));
    return take(*state);
}

bool Event::signal() const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    state->signalled.store(1);
    wake(*state);
    return true;
}

bool Event::reset() const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    state->signalled.store(0);
    return true;
}

} // namespace rkst
