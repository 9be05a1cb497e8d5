#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_StringMap.h"

namespace rktl {
class ElapsedTime;
}
namespace rkil {
class ImageBase;
}

namespace rkvl {

/// Receives the images of a video source, one after the other, on the source's own thread.
class ImageListener {
public:
    virtual ~ImageListener() = default;

    /// position: since the start of the stream. attributes: what the source knows of this image. last: no image follows.
    /// The image is the source's, and good until the call returns.
    virtual void onImage(rkil::ImageBase const& image, rktl::ElapsedTime const& position,
        rksl::StringMap<rktl::String> const& attributes, bool last) = 0;
};

} // namespace rkvl
