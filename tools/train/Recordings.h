#pragma once

#include "support/Analysis.h"

#include <csignal>
#include <optional>
#include <string>

namespace tools {

/// The part of a recording that counts, in seconds; the pipeline sees all that comes before it too.
struct Span {
    double from = 0;
    std::optional<double> to;

    bool contains(int64_t milliseconds) const
    {
        return double(milliseconds) >= from * 1000 && (!to || double(milliseconds) < *to * 1000);
    }
};

/// Takes a video, or the folder of a dump, through the pipeline, with a progress bar on a terminal, up to the end of the span.
/// stop: ends it early when it becomes other than 0.
/// Throws std::runtime_error when the parameters are refused or the input breaks off.
void runRecording(std::string const& input, RunPlan const& plan, Span const& span, volatile std::sig_atomic_t const& stop,
    RunOptions options, std::function<void(FrameResult const&)> const& onFrame);

} // namespace tools
