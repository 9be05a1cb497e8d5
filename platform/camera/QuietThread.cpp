#include "camera/QuietThread.h"

#include <csignal>

namespace camera {

std::thread startQuietThread(std::function<void()> body)
{
    // A thread inherits the mask; blocking before the start leaves no gap.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(std::move(body));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

} // namespace camera
