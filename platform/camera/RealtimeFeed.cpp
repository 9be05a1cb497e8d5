#include "camera/RealtimeFeed.h"

#include "camera/QuietThread.h"

#include <utility>

namespace camera {

RealtimeFeed::RealtimeFeed(FrameReader& reader)
    : mReader(reader)
    , mThread(startQuietThread([this] { run(); }))
{
}

RealtimeFeed::~RealtimeFeed()
{
    {
        std::lock_guard const lock(mMutex);
        mStopping = true;
    }
    mChanged.notify_all();
    mReader.cancel();
    mThread.join();
}

bool RealtimeFeed::take(Picture& picture)
{
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return mFresh || mEnded; });
    if (mFresh) {
        mFresh = false;
        std::swap(picture, mNewest);
        return true;
    }
    if (std::string const error = std::exchange(mError, ""); !error.empty())
        throw SourceError(error);
    return false;
}

void RealtimeFeed::run()
{
    std::string error;
    try {
        play();
    } catch (std::exception const& exception) {
        error = exception.what();
    }
    std::lock_guard const lock(mMutex);
    mError = error;
    mEnded = true;
    mChanged.notify_all();
}

void RealtimeFeed::play()
{
    Picture picture;
    int64_t time = 0;
    bool const live = mReader.live();
    std::chrono::steady_clock::time_point start;
    for (bool first = true; mReader.next(picture, time); first = false) {
        if (first)
            start = std::chrono::steady_clock::now() - std::chrono::milliseconds(time);
        if (!waitUntil(live ? std::chrono::steady_clock::time_point() : start + std::chrono::milliseconds(time)))
            return;
        std::lock_guard const lock(mMutex);
        std::swap(mNewest, picture);
        mFresh = true;
        mChanged.notify_all();
    }
}

/// False when the feed is to stop.
bool RealtimeFeed::waitUntil(std::chrono::steady_clock::time_point due)
{
    std::unique_lock lock(mMutex);
    return !mChanged.wait_until(lock, due, [this] { return mStopping; });
}

} // namespace camera
