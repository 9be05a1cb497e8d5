#pragma once

#include "BaseClasses/ProcessFrame.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <functional>
#include <memory>
#include <vector>

/// A spy of a type that no factory knows. Its rule is the test's, and clones share what they saw with the spy that the test
/// holds. Opens what spies inherit.
class ProbeSpy : public FrameEventSpy {
public:
    struct Seen {
        std::vector<int64_t> positions; // of the frames, ms
        std::vector<uint32_t> flags;
        unsigned int resets = 0;
        rksl::StringMap<rktl::String> status;      // what getStatus answers
        rksl::StringMap<rktl::Integer> imageTypes; // what the spy wants
        std::function<void(ProbeSpy&, ProcessFrame const&)> rule;
    };

    explicit ProbeSpy(char const* name = "probe")
        : FrameEventSpy(name, "")
        , seen(std::make_shared<Seen>())
    {
    }

    using FrameEventSpy::getMaxHeightPixels;
    using FrameEventSpy::getMaxWidthPixels;
    using FrameEventSpy::getPixelZones;

    ProbeSpy* clone() const override { return new ProbeSpy(*this); }
    rktl::String getFriendlyName() const override { return "Probe"; }
    unsigned int getFilterMask() const override { return 0; }
    void getStatus(rksl::StringMap<rktl::String>& status) override { status = seen->status; }
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override { types = seen->imageTypes; }
    void reset() override
    {
        FrameEventSpy::reset();
        ++seen->resets;
    }

    std::shared_ptr<Seen> const seen;

protected:
    void internalSpy(ProcessFrame const& frame) override
    {
        seen->positions.push_back(frame.getPosition().toMilliseconds());
        seen->flags.push_back(frame.getFlags());
        if (seen->rule)
            seen->rule(*this, frame);
    }
};
