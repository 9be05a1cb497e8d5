#include "trackers/EventSpies/CrowdDensity.h"

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_row.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char const* processedImage = "Processed Image";
constexpr char const* stationaryImage = "Stationary Object Processed";
constexpr uint8_t foregroundFrom = 201; // pixel value

/// Of the pixels that are not 0; empty without any.
rk_bbox boundsOf(rk_image const& image)
{
    uint32_t left = image.width, right = 0, top = image.height, bottom = 0;
    for (uint32_t y = 0; y < image.height; ++y)
        for (uint32_t x = 0; x < image.width; ++x)
            if (image.data[static_cast<size_t>(y) * image.width + x] != 0) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = y + 1;
            }
    return bottom == 0 ? rk_bbox{} : rk_bbox{left, top, right - left, bottom - top};
}

} // namespace

CrowdDensity::CrowdDensity()
    : FrameEventSpy("", "")
    , mWaitTime(rktl::ElapsedTime::fromSeconds(10))
{
}

CrowdDensity::CrowdDensity(char const* name, char const* description, float maxDensity, rktl::ElapsedTime const& waitTime)
    : FrameEventSpy(name, description)
    , mWaitTime(waitTime)
{
    setMaxDensity(maxDensity);
}

CrowdDensity::CrowdDensity(CrowdDensity const& other)
    : FrameEventSpy(other)
    , mMaxDensity(other.mMaxDensity)
    , mWaitTime(other.mWaitTime)
    , mRegions(other.mRegions)
{
}

CrowdDensity& CrowdDensity::operator=(CrowdDensity const& other)
{
    FrameEventSpy::operator=(other);
    mMaxDensity = other.mMaxDensity;
    mWaitTime = other.mWaitTime;
    mRegions = other.mRegions;
    return *this;
}

bool CrowdDensity::setMaxDensity(float density)
{
    if (!(density >= 0.0f && density <= 1.0f))
        return false;
    mMaxDensity = double(density);
    return true;
}

void CrowdDensity::setRegions(rksl::List<rkml::Polygon2D<float>> const& regions)
{
    mRegions = regions;
    forgetFrameSize();
}

unsigned int CrowdDensity::getTypeId() const
{
    return 1018;
}

rktl::String CrowdDensity::getTypeName() const
{
    return "CrowdDensitySpy";
}

CrowdDensity* CrowdDensity::clone() const
{
    return new CrowdDensity(*this);
}

rktl::String CrowdDensity::getFriendlyName() const
{
    return "Crowd Density";
}

unsigned int CrowdDensity::getFilterMask() const
{
    return 0;
}

void CrowdDensity::getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const
{
    types[processedImage] = rkil::MultiImage::flatGray;
    types[stationaryImage] = rkil::MultiImage::flatGray;
}

void CrowdDensity::getShapes(std::vector<SpyShape>& shapes) const
{
    addShapes(mRegions, "region", shapes);
}

rktl::String CrowdDensity::getRuleText() const
{
    return rktl::String::fromFormat("alarms when more than %.3g %% of the region is taken for %s", mMaxDensity.value * 100.0,
        mWaitTime.toHumanString(false).c_str());
}

void CrowdDensity::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    if (mRegions.empty())
        faults.push_back("crowd-regions: there is none, and nothing is crowded without");
    findPolygonFaults(mRegions, "crowd-regions", "region", faults);
}

void CrowdDensity::reset()
{
    FrameEventSpy::reset();
    mStartPosition = rktl::ElapsedTime(-1);
    mEventUid = 0;
}

void CrowdDensity::onFrameResize(unsigned int width, unsigned int height)
{
    FrameEventSpy::onFrameResize(width, height);
    if (width == 0 || height == 0 || !mRegionImage.resize(width, height))
        return;
    rk_image& image = *mRegionImage.getImage();
    std::memset(image.data, 0, image.size);
    for (rkml::Polygon2D<float> const& region : mRegions)
        if (region.points().size() > 2) // with fewer nothing lies inside
            drawRegion(region.denormalize(static_cast<int>(width), static_cast<int>(height)));
    mRegionPixels = static_cast<uint32_t>(std::count(image.data, image.data + image.size, 255));
    mBounds = boundsOf(image);
    mMask.clear();
    for (uint32_t y = mBounds.y; y < mBounds.y + mBounds.height; ++y) {
        unsigned char const* const row = image.data + static_cast<size_t>(y) * image.width + mBounds.x;
        mMask.insert(mMask.end(), row, row + mBounds.width);
    }
}

void CrowdDensity::drawRegion(rkml::Polygon2D<int> const& region)
{
    rk_image& image = *mRegionImage.getImage();
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        unsigned char* const row = image.data + static_cast<size_t>(y) * image.width;
        for (int x = 0; x < static_cast<int>(image.width); ++x)
            if (region.contains(x, y))
                row[x] = 255;
    }
}

// ---- The rule ----

void CrowdDensity::internalSpy(ProcessFrame const& frame)
{
    unsigned char const* const moving = foreground(frame, processedImage);
    unsigned char const* const standing = foreground(frame, stationaryImage);
    if (mRegionImage.getImage()->size == 0 || (!moving && !standing))
        return;
    rktl::ElapsedTime const now = frame.getPosition();
    if (isCrowded(moving ? moving : standing, standing ? standing : moving)) {
        if (mStartPosition < rktl::ElapsedTime())
            mStartPosition = now;
        mLastSeen = now;
        if (now - mStartPosition >= mWaitTime)
            mEventUid = addEventFrame(mEventUid, frame, 1.0, nullptr, nullptr);
    } else if (mStartPosition >= rktl::ElapsedTime() && now - mLastSeen >= mWaitTime) {
        mEventUid = 0;
        mStartPosition = rktl::ElapsedTime(-1);
    }
}

/// The pixels of an image of the frame's size; null when there is none.
unsigned char const* CrowdDensity::foreground(ProcessFrame const& frame, char const* name) const
{
    if (!frame.isImageSet(name, rkil::MultiImage::flatGray))
        return nullptr;
    rk_image const* const image = frame.getMultiImage(name).getFlatGray().getImage();
    rk_image const& region = *mRegionImage.getImage();
    return image && image->width == region.width && image->height == region.height ? image->data : nullptr;
}

bool CrowdDensity::isCrowded(unsigned char const* one, unsigned char const* other) const
{
    rk_image const& region = *mRegionImage.getImage();
    uint32_t crowd = 0;
    unsigned char const* mask = mMask.data();
    for (uint32_t y = mBounds.y; y < mBounds.y + mBounds.height; ++y, mask += mBounds.width) {
        size_t const row = static_cast<size_t>(y) * region.width + mBounds.x;
        crowd += rk_row().count_within(mask, one + row, other + row, mBounds.width, foregroundFrom);
    }
    return mRegionPixels > 0 &&
        static_cast<float>(mMaxDensity.value) < static_cast<float>(crowd) / static_cast<float>(mRegionPixels);
}

// ---- Forms ----

rktl::String CrowdDensity::toXML(char const* tag) const
{
    rktl::String keys = mMaxDensity.toXML("max-density") + mWaitTime.toXML("wait-time") + "<crowd-regions>";
    for (rkml::Polygon2D<float> const& region : mRegions)
        keys += region.toXML("region", "vertex");
    return wrapXML(tag, keys + "</crowd-regions>");
}

bool CrowdDensity::fromXML(char const* xml)
{
    forgetFrameSize();
    return readChildren(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const text = element.toXML();
        if (name == "EventSpy")
            return EventSpy::fromXML(text.c_str());
        if (name == "max-density")
            mMaxDensity.fromXML(text.c_str());
        else if (name == "wait-time")
            mWaitTime.fromXML(text.c_str());
        else if (name == "crowd-regions")
            mRegions.fromXML(text.c_str());
        return true;
    });
}

bool CrowdDensity::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << mMaxDensity << mWaitTime << mRegions;
    return true;
}

bool CrowdDensity::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    stream >> mMaxDensity >> mWaitTime >> mRegions;
    return true;
}
