#include "camera/Video.h"

#include <algorithm>
#include <cstdio>

namespace camera {

namespace {

/// The source's size, then its halvings while they stay even and worth looking at.
std::vector<FrameSize> halvings(FrameSize size)
{
    std::vector<FrameSize> sizes = {size};
    while (size.width % 4 == 0 && size.height % 4 == 0 && size.width >= 160 && size.height >= 120) {
        size = {size.width / 2, size.height / 2};
        sizes.push_back(size);
    }
    return sizes;
}

} // namespace

Video::Video(CameraOptions const& options)
    : mFaults(options.faults)
    , mRealtime(options.realtime)
    , mReader(options.source, options.rate, options.loop)
    , mResolutions(options.resolutions)
{
    if (mResolutions.empty())
        mResolutions = halvings({mReader.sourceWidth(), mReader.sourceHeight()});
    mSize = mResolutions.front();
    mReader.setSize(mSize.width, mSize.height);
    if (mFaults.noResolutions)
        mResolutions.clear();
}

Video::~Video() = default;

bool Video::setSize(FrameSize size)
{
    if (mFaults.setResolution || mRunning || std::find(mResolutions.begin(), mResolutions.end(), size) == mResolutions.end())
        return false;
    mSize = size;
    mReader.setSize(size.width, size.height);
    return true;
}

bool Video::next(Picture& picture)
{
    if (mEnded || faultIsDue())
        return false;
    mRunning = true;
    try {
        mEnded = !read(picture);
    } catch (std::exception const& exception) {
        fprintf(stderr, "csdk: %s\n", exception.what());
        mEnded = true;
    }
    if (!mEnded)
        ++mFrames;
    return !mEnded;
}

bool Video::faultIsDue()
{
    if (mFrames < mFaults.refreshAfter || mFailures >= mFaults.refreshFailures)
        return false;
    ++mFailures;
    return true;
}

bool Video::read(Picture& picture)
{
    if (!mRealtime) {
        int64_t time = 0;
        return mReader.next(picture, time);
    }
    if (!mFeed)
        mFeed.emplace(mReader);
    return mFeed->take(picture);
}

} // namespace camera
