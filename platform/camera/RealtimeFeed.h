#pragma once

#include "camera/FrameReader.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace camera {

/// Plays a reader's frames at their times on a thread of its own, as a camera does: whoever takes too long for a frame gets
/// the newest one next, and those in between are lost. The last frame is never lost. Sources that are live come as they come.
class RealtimeFeed {
public:
    /// The clock starts with the first frame. reader must outlive the feed and is the feed's until then.
    explicit RealtimeFeed(FrameReader& reader);
    ~RealtimeFeed();
    RealtimeFeed(RealtimeFeed const&) = delete;
    RealtimeFeed& operator=(RealtimeFeed const&) = delete;

    /// Waits for a frame that was not taken yet, and swaps it with picture. False at the end.
    /// Throws SourceError when the source broke off, once; it then counts as ended.
    bool take(Picture& picture);

private:
    void run();
    void play();
    bool waitUntil(std::chrono::steady_clock::time_point due);

    FrameReader& mReader;
    std::mutex mMutex;
    std::condition_variable mChanged;
    Picture mNewest;
    bool mFresh = false; // mNewest was not taken yet
    bool mEnded = false;
    bool mStopping = false;
    std::string mError;
    std::thread mThread; // last: it uses all of the above
};

} // namespace camera
