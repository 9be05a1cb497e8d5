#include "support/Analysis.h"

#include "BaseClasses/ProcessFrame.h"
#include "application/AlarmGate.h"
#include "application/CameraFrame.h"
#include "support/VideoClock.h"

#include <stdexcept>

namespace tools {

namespace {

void require(bool accepted, SimpleTracker const& tracker)
{
    if (!accepted)
        throw std::runtime_error("the analysis refuses its parameters: " + tracker.getLastError());
}

void configure(SimpleTracker& tracker, RunPlan const& plan, RunOptions const& options)
{
    require(tracker.setParameters(plan.params), tracker);
    require(tracker.setTrackerParameters(plan.tracker), tracker);
    rksl::Set<rktl::String> names;
    for (std::string const& name : options.images)
        names.insert(name);
    tracker.requestImages(names);
}

/// Uids of the events that leave the system.
std::vector<uint32_t> send(AlarmGate& gate, rksl::List<Event> const& events)
{
    std::vector<uint32_t> uids;
    for (Event const& event : events)
        if (gate.mayPass(event.getUID())) {
            gate.sent(event.getUID());
            uids.push_back(event.getUID());
        }
    return uids;
}

} // namespace

Json RunSummary::toJson() const
{
    return {{"summary",
        {{"frames", frames}, {"duration_ms", duration}, {"failed_frames", failed}, {"events", events}, {"sent", sent}}}};
}

RunSummary analyse(FrameInput& input, RunPlan const& plan, RunOptions const& options,
    std::function<void(FrameResult const&)> const& onFrame,
    std::function<void(uint64_t frame, std::string const& why)> const& onFailure)
{
    VideoClock clock;
    clock.set(0, options.startTime);
    SimpleTracker tracker(nullptr, 0, false);
    configure(tracker, plan, options);
    if (options.started)
        options.started(tracker);
    AlarmGate gate;
    gate.setGracePeriod(readAlarmInterval(plan.settings));
    ProcessFrame frame;
    RunSummary summary;
    for (uint64_t number = 0; input.advance(); ++number) {
        int64_t const position = input.position();
        if ((options.limit && double(position) >= *options.limit * 1000) || (options.stop && *options.stop))
            break;
        clock.set(position, (options.keepTimes ? input.wall() : std::nullopt).value_or(options.startTime + position));
        frame.clear();
        FrameResult result = {number, frame, false, false, {}, {}};
        result.colour = input.wrap(frame);
        CameraFrame::stamp(frame, 0);
        result.failed = !tracker.process(frame, result.colour, result.events);
        if (result.failed) {
            result.events.clear(); // the application drops them
            onFailure(number, tracker.getLastError());
        }
        result.sent = send(gate, result.events);
        onFrame(result);

        summary.frames += 1;
        summary.failed += result.failed;
        summary.events += result.events.size();
        summary.sent += result.sent.size();
        summary.duration = position;
    }
    if (options.ended)
        options.ended(tracker);
    return summary;
}

} // namespace tools
