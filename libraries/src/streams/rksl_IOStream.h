#pragma once

#include "streams/rksl_IStream.h"
#include "streams/rksl_OStream.h"

namespace rksl {

/// An object stream in both directions, such as a connection or a queue in memory.
class IOStream : public IStream, public OStream {
public:
    /// Gives a connection up: what waits for its peer fails soon, and closing it no longer waits. Does nothing to a stream
    /// without a peer. Any thread.
    virtual void abort() { }
};

} // namespace rksl
