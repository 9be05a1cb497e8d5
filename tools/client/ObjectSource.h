#pragma once

#include "streams/rksl_StreamData.h"

namespace tools {

/// What a server sends, object by object, from a connection or from a file.
class ObjectSource {
public:
    virtual ~ObjectSource() = default;

    enum class Next {
        object,
        nothing, // yet; none came within a moment
        end,     // there will be none any more
    };

    /// frame: becomes the next object as it was sent, header included. Throws std::runtime_error when the source breaks off.
    virtual Next next(rksl::StreamData& frame) = 0;
};

} // namespace tools
