#pragma once

#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_Mutex.h"

#include <list>
#include <memory>

namespace rksl {

class IOStream;

/// Closes streams in order, which may take as long as their peers, each on a thread of its own: whoever lets a connection go
/// neither waits nor holds a lock meanwhile. Any thread may use it.
class StreamCloser {
public:
    StreamCloser();
    /// finish without patience.
    ~StreamCloser();
    StreamCloser(StreamCloser const&) = delete;
    StreamCloser& operator=(StreamCloser const&) = delete;

    /// Takes over a stream that nobody else uses any more.
    void close(rktl::SmartPtr<IOStream> const& stream);

    /// Streams that are still being closed.
    unsigned int getCount();

    /// Waits up to the limit until all that were taken over so far are closed; breaks off those that are not.
    void finish(unsigned int milliseconds);

private:
    class Closing;

    void dropFinished();

    rkst::Mutex mMutex{false};
    std::list<std::unique_ptr<Closing>> mClosings; // under mMutex
};

} // namespace rksl
