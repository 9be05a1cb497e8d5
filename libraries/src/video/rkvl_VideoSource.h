#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_ResourceInfo.h"
#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"
#include "plugin/rkpl_PluginPtr.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"
#include "sync/rkst_Vault.h"
#include "video/rkvl_Resolution.h"

namespace rktl {
class url;
}
namespace rkil {
class ImageBase;
}

namespace rkvl {

class ImageListener;

/// A source of video, as a plug-in brings it: it is opened on a URI and then hands its images to one listener. A source that
/// can say why it failed is a rkpl::LastError too.
/// setCallback may be called by any thread; sendImage by the source's own; the rest by one thread at a time.
class VideoSource : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{9F146A5B-3FD1-4ef9-BA47-1CA07CD67A7B}";

    VideoSource();

    /// No sendImage may be under way any more.
    ~VideoSource() noexcept override;

    bool supports(char const* wanted, rkpl::Plugin** result) override;

    /// Tries the URI on a new source of this kind, for at most limit. info: what that source says of itself, with the text of
    /// its last error, if it has one, as the attribute "error". Throws rktl::Exception "Invalid video uri." when the source
    /// does not open it; info then holds the URI and the error.
    virtual void validate(char const* uri, rktl::ResourceInfo& info, rktl::ElapsedTime const& limit) const;

    /// The name, and as attributes "width", "height", "resolutions" (with "|" between) and "fps".
    virtual rktl::ResourceInfo getVideoInfo() const;

    /// "" unless the source has a name for people.
    virtual rktl::String getFriendlyName() const;

    /// listener: not owned; null for none. The former listener is called no more once this returns true; false when it was
    /// still busy after 15 s, and nothing has changed then. Not to be called by the listener itself.
    virtual bool setCallback(ImageListener* listener);

    /// The sizes that getResolutions makes of the source's own.
    virtual rksl::Set<Resolution> getResolutions() const;

    /// Hands an image to the listener, if there is one.
    virtual void sendImage(rkil::ImageBase const& image, rktl::ElapsedTime const& position,
        rksl::StringMap<rktl::String> const& attributes, bool last);

    /// The URL without the keys of its query that start with prefix and "-", except those that start with a non-empty keep.
    static rktl::String sanitize(rktl::url const& url, rktl::String const& prefix, rktl::String const& keep);

    /// set: becomes the size and each halving of it, as long as it is 160 wide or 120 high at least.
    static void getResolutions(unsigned int width, unsigned int height, rksl::Set<Resolution>& set);

protected:
    /// Another source of this kind, not open; null when there can be no other.
    virtual rkpl::PluginPtr<VideoSource> create() const = 0;

    /// False when there is no video under that URI within limit.
    virtual bool open(char const* uri, rktl::ElapsedTime const& limit) = 0;

    /// Of the open video; 0x0 and 0 before.
    virtual Resolution getSize() const = 0;
    virtual double getFps() const = 0;

private:
    rkst::Vault<ImageListener*> mListener;
};

} // namespace rkvl
