#include "streams/rksl_NetIOStream.h"

#include "misc/rktl_Exception.h"

#include <algorithm>
#include <cstdlib>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

unsigned long countThreads()
{
    struct stat tasks = {};
    stat("/proc/self/task", &tasks);
    return tasks.st_nlink;
}

/// A thread that has said that it ended still holds its record for a moment, in which a search for leaks would find it.
class ThreadsGone {
public:
    ~ThreadsGone()
    {
        for (int i = 0; i < 1000 && countThreads() > mBefore; ++i)
            usleep(100);
    }

private:
    unsigned long mBefore = countThreads();
};

} // namespace

/// Any bytes from the network, in pieces of any size (the first byte seeds their sizes), and then the peer goes. What comes
/// out are whole frames or one exception, never more bytes than came in.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    int ends[2];
    if (size == 0 || size > 100000 || socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return 0;
    unsigned int pieces = *data++;
    --size;
    ThreadsGone const gone;
    size_t taken = 0;
    {
        rksl::NetIOStream stream(ends[0], 1);
        try {
            for (size_t sent = 0; sent < size;) {
                pieces = pieces * 1103515245 + 12345;
                size_t const piece = std::min<size_t>(size - sent, 1 + (pieces >> 16) % 64);
                if (send(ends[1], data + sent, piece, MSG_NOSIGNAL) != ssize_t(piece))
                    std::abort();
                sent += piece;
                while (!stream.isEmpty())
                    taken += stream.skip();
                if (taken > sent)
                    std::abort();
            }
        } catch (rktl::Exception const&) {
            // Too long, or an end of file.
        }
        close(ends[1]);
        try {
            for (;;)
                taken += stream.skip();
        } catch (rktl::Exception const&) {
        }
        if (taken > size)
            std::abort();
    }
    return 0;
}
