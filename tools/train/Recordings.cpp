#include "Recordings.h"

#include "BaseClasses/ProcessFrame.h"
#include "support/ProgressBar.h"

#include <filesystem>
#include <iostream>
#include <unistd.h>

namespace tools {

namespace {

constexpr int64_t START = 1704067200000; // 2024-01-01T00:00:00Z, so that a run gives the same bytes on every day

} // namespace

void runRecording(std::string const& input, RunPlan const& plan, Span const& span, volatile std::sig_atomic_t const& stop,
    RunOptions options, std::function<void(FrameResult const&)> const& onFrame)
{
    auto const frames = std::filesystem::is_directory(input) ? openDump(input) : openVideo(input);
    auto length = frames->length();
    if (span.to)
        length = std::min(length.value_or(INT64_MAX), int64_t(*span.to * 1000));
    options.startTime = START;
    options.limit = span.to;
    options.stop = &stop;
    ProgressBar progress(std::cerr, isatty(STDERR_FILENO), length);
    analyse(
        *frames, plan, options,
        [&](FrameResult const& result) {
            onFrame(result);
            progress.update(result.frame.getPosition().toMilliseconds(), result.number + 1);
        },
        [](uint64_t, std::string const&) {});
}

} // namespace tools
