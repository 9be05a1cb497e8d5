#include "support/ProgressBar.h"

#include <algorithm>
#include <string>

namespace tools {

namespace {

constexpr int64_t WIDTH = 40;           // characters of the bar
constexpr int64_t UPDATE_PERIOD = 1000; // ms of video

std::string twoDigits(int64_t number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string clockText(int64_t milliseconds)
{
    int64_t const seconds = milliseconds / 1000;
    return std::to_string(seconds / 3600) + ":" + twoDigits(seconds / 60 % 60) + ":" + twoDigits(seconds % 60);
}

} // namespace

ProgressBar::ProgressBar(std::ostream& out, bool isTerminal, std::optional<int64_t> length)
    : mOut(out)
    , mIsTerminal(isTerminal)
    , mLength(length)
{
}

void ProgressBar::update(int64_t position, uint64_t frames)
{
    if (!mIsTerminal || position < mNext)
        return;
    mNext = position + UPDATE_PERIOD;
    mOut << "\r\033[K";
    if (mLength && *mLength > 0) {
        int64_t const part = std::clamp<int64_t>(position, 0, *mLength);
        std::string bar(size_t(part * WIDTH / *mLength), '#');
        bar.resize(WIDTH, '.');
        mOut << "[" << bar << "] " << part * 100 / *mLength << "%  ";
    }
    mOut << clockText(position) << "  " << frames << " frames" << std::flush;
    mDrawn = true;
}

void ProgressBar::clear()
{
    if (mDrawn)
        mOut << "\r\033[K" << std::flush;
    mDrawn = false;
    mNext = 0;
}

} // namespace tools
