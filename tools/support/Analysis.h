#pragma once

#include "support/FrameInput.h"
#include "support/FrameJson.h"
#include "support/RunPlan.h"

#include <csignal>
#include <functional>

namespace tools {

/// What a run came to.
struct RunSummary {
    uint64_t frames = 0;
    uint64_t failed = 0; // frames that the pipeline gave up on
    uint64_t events = 0; // new and changed ones of all frames
    uint64_t sent = 0;
    int64_t duration = 0; // position of the last frame in ms

    Json toJson() const;
};

struct RunOptions {
    int64_t startTime = 0;                            // wall clock of the first frame: ms since the epoch
    bool keepTimes = true;                            // where the input tells its own wall clock, that one
    std::optional<double> limit;                      // seconds; frames from there on are left out
    std::vector<std::string> images;                  // set on each frame besides the native one
    volatile std::sig_atomic_t const* stop = nullptr; // ends the run when it becomes other than 0; not owned
    std::function<void(SimpleTracker&)> started;      // before the first frame; the pipeline lives until ended was called
    std::function<void(SimpleTracker&)> ended;        // behind the last
};

/// Takes the frames of input through the pipeline of the application, its clocks following the video. onFrame is called for
/// each; onFailure is told why the pipeline gave up on a frame, before onFrame.
/// Throws std::runtime_error when the plan is refused or the input breaks off.
RunSummary analyse(FrameInput& input, RunPlan const& plan, RunOptions const& options,
    std::function<void(FrameResult const&)> const& onFrame,
    std::function<void(uint64_t frame, std::string const& why)> const& onFailure);

} // namespace tools
