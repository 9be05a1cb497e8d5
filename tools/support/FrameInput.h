#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class ProcessFrame;

namespace tools {

/// The frames of a recording, one after the other. Failures are thrown as std::runtime_error with the place in the input.
class FrameInput {
public:
    virtual ~FrameInput() = default;

    /// Moves to the next frame, the first one at the first call; false at the end.
    virtual bool advance() = 0;

    /// Milliseconds since the first frame, rounded down; never falls.
    virtual int64_t position() const = 0;

    /// The wall clock of the current frame, where the input tells: milliseconds since the epoch.
    virtual std::optional<int64_t> wall() const { return std::nullopt; }

    /// Gives frame, which has been cleared, its size and its "Native Image". Returns whether it is in colour.
    virtual bool wrap(ProcessFrame& frame) = 0;

    /// Position of the last frame, where it is known, for showing how far we are.
    virtual std::optional<int64_t> length() const { return std::nullopt; }
};

/// A video: what camera::openSource opens. It is always day in it.
std::unique_ptr<FrameInput> openVideo(std::string const& text);

/// The folder of an earlier dump: its times and native images.
std::unique_ptr<FrameInput> openDump(std::string const& folder);

} // namespace tools
