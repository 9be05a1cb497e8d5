#include "sync/rkst_Mutex.h"

#include "sync/rkst_Deadline.h"

namespace rkst {

namespace {

pthread_mutex_t* makeRecursive()
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_t* const mutex = new pthread_mutex_t;
    pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return mutex;
}

int lockUntil(pthread_mutex_t* mutex, Deadline const& deadline)
{
#if defined(__SANITIZE_THREAD__)
    // This sanitizer does not know the other call. A wall clock that jumps in a test run is nobody's concern.
    timespec moment;
    clock_gettime(CLOCK_REALTIME, &moment);
    int64_t const nanoseconds = moment.tv_nsec + int64_t(deadline.remaining()) * 1000000;
    moment.tv_sec += time_t(nanoseconds / 1000000000);
    moment.tv_nsec = long(nanoseconds % 1000000000);
    return pthread_mutex_timedlock(mutex, &moment);
#else
    timespec const moment = deadline.moment();
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &moment);
#endif
}

} // namespace

Mutex::Mutex(bool initiallyLocked)
    : rktl::SmartPtr<pthread_mutex_t>(makeRecursive())
{
    if (initiallyLocked)
        pthread_mutex_lock(get());
}

Mutex::~Mutex()
{
    removeReference();
}

bool Mutex::wait(unsigned int milliseconds) const
{
    pthread_mutex_t* const mutex = get();
    if (!mutex)
        return false;
    if (milliseconds == 0)
        return pthread_mutex_trylock(mutex) == 0;
    if (milliseconds == Deadline::noLimit)
        return pthread_mutex_lock(mutex) == 0;
    return lockUntil(mutex, Deadline(milliseconds)) == 0;
}

bool Mutex::unlock() const
{
    pthread_mutex_t* const mutex = get();
    return mutex && pthread_mutex_unlock(mutex) == 0;
}

void Mutex::uninitializeData()
{
    pthread_mutex_destroy(get());
}

} // namespace rkst
