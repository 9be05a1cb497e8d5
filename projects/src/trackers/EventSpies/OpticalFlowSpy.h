#pragma once

#include "trackers/EventSpies/FrameEventSpy.h"

#include <span>
#include <vector>

/// Sums the histograms of motion and of entropy that frames bring as the attributes "ResidualMotion" (8 numbers with commas) and
/// "ResidualEntropy" (5), and reports each sum as an event at the end of a scene and of a clip, which flags of the frame mark.
/// Frames without these attributes leave it silent. Zones, classes and limits of objects have no effect.
///
/// Binary and XML forms are the base's alone, without the keys of spies over frames.
class OpticalFlowSpy : public FrameEventSpy {
public:
    OpticalFlowSpy();

    /// The share of each bin in their sum, with ", " between; "" for a sum below 10.
    static rktl::String printBins(std::span<float const> bins);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    OpticalFlowSpy* clone() const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void onCreateXML(rktl::String& xml) const override;
    void onParseXML(rkxml::DomIterator& element) override;
    void internalSpy(ProcessFrame const& frame) override;

private:
    using Bins = std::vector<float>;

    void report(Bins& bins, Event::Moment const& start, char const* what, ProcessFrame const& frame);
    static void add(rktl::String const& numbers, Bins& scene, Bins& clip);

    Bins mSceneMotion;
    Bins mSceneEntropy;
    Bins mClipMotion;
    Bins mClipEntropy;
    Event::Moment mSceneStart; // of the last scene break
    Event::Moment mClipStart;  // of the clip's first frame; its stamp is not set before
};
