#pragma once

#include "BaseClasses/ProcessParams.h"
#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_List.h"
#include "trackers/EventSpies/EventSpyFactory.h"

/// Parameters of EventDetector: the spies to run, and the least spacing of the frames that they see.
///
/// XML: "processing-interval", then the elements of the spies.
class EventDetectorParams : public ProcessParams {
public:
    explicit EventDetectorParams(rktl::ElapsedTime const& interval);

    /// Takes over what the params of the stage say; false when their XML is none.
    bool read(ProcessParams const& params) { return assignFrom(params); }

    rktl::ElapsedTime const& getProcessingInterval() const { return mProcessingInterval; }
    void setProcessingInterval(rktl::ElapsedTime const& interval) { mProcessingInterval = interval; }
    rksl::List<EventSpyFactory> const& getSpyFactories() const { return mSpyFactories; }
    rksl::List<EventSpyFactory>& getSpyFactories() { return mSpyFactories; }

    // The first spy of that name; false when there is none.
    bool renameSpy(rktl::String const& oldName, rktl::String const& newName);
    bool removeSpy(rktl::String const& name);

    rksl::MemIOStream binSerialize() const override;
    bool binUnserialize(rksl::MemIOStream const& stream) override;
    rktl::String xmlSerialize() const override;
    /// Spies that do not parse are left out.
    bool xmlUnserialize(rktl::String const& xml) override;

private:
    rksl::List<EventSpyFactory>::iterator find(rktl::String const& name);

    rksl::List<EventSpyFactory> mSpyFactories;
    rktl::ElapsedTime mProcessingInterval;
};
