#include "trackers/EventSpies/OpticalFlowSpy.h"

#include "BaseClasses/ProcessFrame.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace {

constexpr size_t motionBins = 8;
constexpr size_t entropyBins = 5;
constexpr float leastSum = 10.0f;

} // namespace

OpticalFlowSpy::OpticalFlowSpy()
    : FrameEventSpy("", "")
    , mSceneMotion(motionBins)
    , mSceneEntropy(entropyBins)
    , mClipMotion(motionBins)
    , mClipEntropy(entropyBins)
{
}

unsigned int OpticalFlowSpy::getTypeId() const
{
    return 1014;
}

rktl::String OpticalFlowSpy::getTypeName() const
{
    return "OpticalFlowSpy";
}

OpticalFlowSpy* OpticalFlowSpy::clone() const
{
    return new OpticalFlowSpy(*this);
}

rktl::String OpticalFlowSpy::getFriendlyName() const
{
    return "Optical Flow Spy";
}

unsigned int OpticalFlowSpy::getFilterMask() const
{
    return 0;
}

rktl::String OpticalFlowSpy::getRuleText() const
{
    return "reports the motion of each scene and clip";
}

/// The start of the scene stays.
void OpticalFlowSpy::reset()
{
    FrameEventSpy::reset();
    for (Bins* const bins : {&mSceneMotion, &mSceneEntropy, &mClipMotion, &mClipEntropy})
        std::fill(bins->begin(), bins->end(), 0.0f);
    mClipStart = {};
}

// ---- The rule ----

rktl::String OpticalFlowSpy::printBins(std::span<float const> bins)
{
    float sum = 0.0f;
    for (float const bin : bins)
        sum += bin;
    if (sum < leastSum)
        return {};
    std::ostringstream text;
    for (size_t i = 0; i < bins.size(); ++i)
        text << (i == 0 ? "" : ", ") << bins[i] / sum;
    return text.str();
}

/// The frame that breaks a scene belongs to the next one; that which ends a clip belongs to the clip.
void OpticalFlowSpy::internalSpy(ProcessFrame const& frame)
{
    uint32_t const flags = frame.getFlags();
    if (!mClipStart.first.isSet())
        mClipStart = moment(frame);
    if (flags & (Frame::sceneBreak | Frame::endOfClip)) {
        report(mSceneMotion, mSceneStart, "Scene Motion Histogram: ", frame);
        report(mSceneEntropy, mSceneStart, "Scene Entropy Histogram: ", frame);
        mSceneStart = moment(frame);
    }
    add(frame.getAttribute("ResidualMotion"), mSceneMotion, mClipMotion);
    add(frame.getAttribute("ResidualEntropy"), mSceneEntropy, mClipEntropy);
    if (flags & Frame::endOfClip) {
        report(mClipMotion, mClipStart, "Clip Motion Histogram: ", frame);
        report(mClipEntropy, mClipStart, "Clip Entropy Histogram: ", frame);
        mClipStart = {};
    }
}

/// The bins are empty afterwards.
void OpticalFlowSpy::report(Bins& bins, Event::Moment const& start, char const* what, ProcessFrame const& frame)
{
    rktl::String const shares = printBins(bins);
    std::fill(bins.begin(), bins.end(), 0.0f);
    if (shares.empty())
        return;
    Event event(start, start, getAlarmType(), getPriority(), 100);
    event.setStop(moment(frame));
    event.setDescription(what + shares);
    addEvent(std::move(event), nullptr, false);
}

/// Any other count of numbers is left out.
void OpticalFlowSpy::add(rktl::String const& numbers, Bins& scene, Bins& clip)
{
    std::list<rktl::String> const tokens = numbers.tokenize(",");
    if (tokens.size() != scene.size())
        return;
    size_t bin = 0;
    for (rktl::String const& token : tokens) {
        float const read = std::strtof(token.c_str(), nullptr);
        float const number = std::isfinite(read) ? read : 0.0f; // strtof also knows the words nan and inf
        scene[bin] += number;
        clip[bin] += number;
        ++bin;
    }
}

// ---- Forms ----

rktl::String OpticalFlowSpy::toXML(char const* tag) const
{
    return wrapXML(tag, "");
}

bool OpticalFlowSpy::fromXML(char const* xml)
{
    return readChildren(xml,
        [this](rkxml::DomIterator& child) { return child.getName() != "EventSpy" || EventSpy::fromXML(child.toXML().c_str()); });
}

void OpticalFlowSpy::onCreateXML(rktl::String& xml) const
{
    xml.clear();
}

void OpticalFlowSpy::onParseXML(rkxml::DomIterator&) { }

bool OpticalFlowSpy::serialize(rksl::MemIOStream&) const
{
    return true;
}

bool OpticalFlowSpy::unserialize(rksl::MemIOStream&)
{
    return true;
}
