#pragma once

#include "streams/rksl_IStream.h"
#include "streams/rksl_OStream.h"

namespace rksl {

/// An object stream in both directions, such as a connection or a queue in memory.
class IOStream : public IStream, public OStream { };

} // namespace rksl
