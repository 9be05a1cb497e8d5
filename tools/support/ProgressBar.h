#pragma once

#include <cstdint>
#include <optional>
#include <ostream>

namespace tools {

/// One line on a terminal that says how far a video has come: how much of it (where its length is known), its time, and its
/// frames. Anything but a terminal stays clean.
class ProgressBar {
public:
    /// length: of the video in ms. isTerminal: of out, which must outlive the bar.
    ProgressBar(std::ostream& out, bool isTerminal, std::optional<int64_t> length);
    ~ProgressBar() { clear(); }
    ProgressBar(ProgressBar const&) = delete;
    ProgressBar& operator=(ProgressBar const&) = delete;

    /// position: of the frame in ms. frames: so far. Draws once for each second of the video.
    void update(int64_t position, uint64_t frames);

    /// Takes the line off the terminal, for another text to be written; the next update draws it again.
    void clear();

private:
    std::ostream& mOut;
    bool const mIsTerminal;
    std::optional<int64_t> const mLength;
    int64_t mNext = 0; // position of the next update in ms
    bool mDrawn = false;
};

} // namespace tools
