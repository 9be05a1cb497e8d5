#pragma once

#include "BaseClasses/EventCache.h"
#include "BaseClasses/EventDetection.h"
#include "BaseClasses/VideoProcess.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_Vault.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <utility>
#include <vector>

/// The stage that runs the spies. It hands them the frames, at least an interval of stream time apart, and gathers their
/// events, which getEvents gives out once for each change.
///
/// Frames come on the frame thread; the operations of EventDetection from any. Lock order: spies, then events, then a spy's
/// own cache.
class EventDetector : public EventDetection, public VideoProcess {
public:
    EventDetector();
    /// Nobody may use the stage any more: a guard that lives on is a fault of ours, and ends the process.
    ~EventDetector() noexcept override = default;

    bool supports(char const* wanted, rkpl::Plugin** result) override;
    void release() override { delete this; }

    bool getEvents(rksl::List<Event>& events) override;
    /// The running spy is what its XML says and nothing else; without a reader of XML, or for XML that the factory refuses,
    /// the plain clone runs, and the answer is false. False, too, for a spy that is null or none over frames.
    bool addSpy(EventSpy const* spy) override;
    bool setSpy(EventSpy const* spy) override;
    bool getSpies(std::list<EventSpyFactory>& spies) const override;
    bool getSupportedSpies(rksl::StringMap<rktl::String>& spies) const override;
    bool removeSpy(rktl::String const& name) override;
    bool renameSpy(rktl::String const& oldName, rktl::String const& newName) override;

    rktl::String getProcessType() const override;
    ProcessParams getDefaultParameters() const override;
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override;
    /// Events that were gathered stay.
    void resetProcess() override;

protected:
    void onFrameResize(unsigned int width, unsigned int height, double scale) override;
    bool onProcessFrame(ProcessFrame& frame) override;
    /// Replaces all spies.
    bool onSetParameters(ProcessParams const& params) override;

private:
    using SpyPtr = rktl::SmartPtr<FrameEventSpy>;
    /// Ascending by name. In one row, as each frame asks all of them for their status.
    using Spies = std::vector<std::pair<rktl::String, SpyPtr>>;
    static constexpr unsigned int lockLimit = 15000; // ms

    static Spies::iterator place(Spies& spies, rktl::String const& name);
    static bool has(Spies const& spies, rktl::String const& name);
    static SpyPtr& entry(Spies& spies, rktl::String const& name);
    static bool erase(Spies& spies, rktl::String const& name);
    bool putSpy(Spies& spies, FrameEventSpy const& spy) const;
    void skipFrame(ProcessFrame& frame);
    void runSpies(Spies& spies, EventCache& gathered, ProcessFrame& frame);

    FrameView mView;                 // shared by all spies
    rktl::ElapsedTime mNextProcess;  // stream position from which the next frame is processed
    rktl::ElapsedTime mLastPosition; // of the last frame seen
    uint32_t mPendingFlags = 0;      // of skipped frames
    rktl::ElapsedTime mInterval;
    rkst::Vault<Spies> mSpies;
    rkst::Vault<EventCache> mEvents;
    rktl::NodeMap<uint32_t, Event> mFrameEvents;    // given to each frame
    rksl::StringMap<rktl::String> mFrameAttributes; // given to skipped frames
};
