#include "video/rkvl_VideoSource.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"
#include "plugin/rkpl_LastError.h"
#include "video/rkvl_ImageListener.h"

#include <algorithm>
#include <limits>
#include <list>

namespace rkvl {

namespace {

constexpr unsigned int patience = 15000; // ms

int32_t held(unsigned int pixels)
{
    return static_cast<int32_t>(std::min<unsigned int>(pixels, std::numeric_limits<int32_t>::max()));
}

} // namespace

VideoSource::VideoSource()
    : mListener(nullptr)
{
}

VideoSource::~VideoSource() noexcept = default;

bool VideoSource::supports(char const* wanted, rkpl::Plugin** result)
{
    return answers<VideoSource>(this, wanted, result);
}

void VideoSource::validate(char const* uri, rktl::ResourceInfo& info, rktl::ElapsedTime const& limit) const
{
    rkpl::PluginPtr<VideoSource> const source = create();
    bool const opened = uri && source && source->open(uri, limit);
    info = opened ? source->getVideoInfo() : rktl::ResourceInfo();
    info.setURL(uri);
    if (source)
        if (auto const* const reporter = dynamic_cast<rkpl::LastError const*>(source.get()))
            info.setAttribute("error", reporter->getLastError());
    if (!opened)
        throw rktl::Exception("Invalid video uri.");
}

rktl::ResourceInfo VideoSource::getVideoInfo() const
{
    Resolution const size = getSize();
    std::list<rktl::String> sizes;
    for (Resolution const& offered : getResolutions())
        sizes.push_back(rktl::String::fromFormat("%dx%d", offered.width.value, offered.height.value));
    rktl::ResourceInfo info;
    info.setFriendlyName(getFriendlyName());
    info.setAttribute("width", rktl::String::fromInteger(size.width));
    info.setAttribute("height", rktl::String::fromInteger(size.height));
    info.setAttribute("resolutions", rktl::String::join(sizes, "|"));
    info.setAttribute("fps", rktl::String::fromFormat("%f", getFps()));
    return info;
}

rktl::String VideoSource::getFriendlyName() const
{
    return {};
}

bool VideoSource::setCallback(ImageListener* listener)
{
    return mListener.assign(listener, patience);
}

rksl::Set<Resolution> VideoSource::getResolutions() const
{
    Resolution const size = getSize();
    rksl::Set<Resolution> sizes;
    getResolutions(static_cast<unsigned int>(std::max<int32_t>(size.width, 0)),
        static_cast<unsigned int>(std::max<int32_t>(size.height, 0)), sizes);
    return sizes;
}

void VideoSource::sendImage(
    rkil::ImageBase const& image, rktl::ElapsedTime const& position, rksl::StringMap<rktl::String> const& attributes, bool last)
{
    auto const listener = mListener.getReadPtr(patience);
    if (listener && *listener)
        (*listener)->onImage(image, position, attributes, last);
}

rktl::String VideoSource::sanitize(rktl::url const& url, rktl::String const& prefix, rktl::String const& keep)
{
    std::string const hidden = prefix + "-";
    rktl::url shown = url;
    std::erase_if(shown.mQuery, [&](auto const& pair) {
        rktl::String const& key = pair.first;
        return key.hasPrefix(hidden) && (keep.empty() || !key.hasPrefix(keep));
    });
    return shown;
}

void VideoSource::getResolutions(unsigned int width, unsigned int height, rksl::Set<Resolution>& set)
{
    set.clear();
    for (; width > 159 || height > 119; width /= 2, height /= 2)
        set.insert(Resolution(held(width), held(height)));
}

} // namespace rkvl
