#include "camera/FrameReader.h"

namespace camera {

FrameReader::FrameReader(std::string sourceText, std::optional<FrameRate> rate, bool loop)
    : mSourceText(std::move(sourceText))
    , mRate(rate)
    , mLoop(loop)
    , mSource(openSource(mSourceText, rate))
    , mWidth(mSource->width())
    , mHeight(mSource->height())
{
}

void FrameReader::setSize(uint32_t width, uint32_t height)
{
    mWidth = width;
    mHeight = height;
}

bool FrameReader::next(Picture& picture, int64_t& time)
{
    if (!advance())
        return false;
    time = mRoundStart + mSource->time();
    if (time > mLast)
        mInterval = time - mLast;
    mLast = time;
    if (mWidth == mSource->width() && mHeight == mSource->height()) {
        mSource->picture(picture);
    } else {
        mSource->picture(mUnscaled);
        mScaler.scale(mUnscaled, picture, mWidth, mHeight);
    }
    return true;
}

bool FrameReader::advance()
{
    if (mSource->advance())
        return mAnyFrame = true;
    if (!mLoop || !mAnyFrame) // a source without any frame would loop for ever
        return false;
    return startOver();
}

bool FrameReader::startOver()
{
    std::unique_ptr<FrameSource> again = openSource(mSourceText, mRate);
    {
        std::lock_guard const lock(mMutex);
        if (mCancelled)
            return false;
        mSource = std::move(again);
    }
    mRoundStart = mLast + mInterval;
    return mAnyFrame = mSource->advance();
}

void FrameReader::cancel()
{
    std::lock_guard const lock(mMutex);
    mCancelled = true;
    mSource->cancel();
}

} // namespace camera
