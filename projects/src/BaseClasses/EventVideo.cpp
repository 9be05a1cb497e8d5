#include "BaseClasses/Event.h"
#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_url.h"
#include "video/rkvl_VideoSource.h"

void Event::getVideoURIs(rksl::StringMap<rktl::String>& uris, bool keepHidden) const
{
    // Keys of a URI that this system reads itself begin so, such as "rk-ptz-enabled".
    constexpr char const* ownPrefix = "rk";
    for (Frame const& frame : *mFrames) {
        rktl::url const origin(frame.getOrigin());
        rktl::String uri;
        if (origin.mQuery.peek("video-uri", uri) && !uri.empty())
            uris[MeridaneAddress(origin).getCamera()] =
                rkvl::VideoSource::sanitize(rktl::url(uri), ownPrefix, keepHidden ? ownPrefix : "");
    }
}
