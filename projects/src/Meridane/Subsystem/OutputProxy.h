#pragma once

#include "misc/rktl_LogInterface.h"
#include "misc/rktl_String.h"
#include "streams/rksl_Set.h"

class Frame;
namespace rkvl {
class Resolution;
}

/// The camera's own server, as the pipeline sees it: it says which images its clients want, and takes each finished frame
/// for them. A port of 0 makes no server. This build has no network part: with any other port one line in the log says so,
/// and nothing listens.
class OutputProxy : public LogInterface {
public:
    /// logger: not owned; may be null.
    OutputProxy(unsigned int port, rktl::Logger* logger);

    /// Adds the names of the images that clients have asked for, and gives the largest size asked for. False without
    /// listeners; both are then as before.
    bool getRequestedImages(rksl::Set<rktl::String>& images, rkvl::Resolution& size);

    /// Hands the frame to every client whose turn it is.
    void updateFrameListeners(Frame& frame);
};
