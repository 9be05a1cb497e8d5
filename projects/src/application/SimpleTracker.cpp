#include "application/SimpleTracker.h"

#include "BaseClasses/MovingObjectParams.h"
#include "BaseClasses/ObjectTrackerParams.h"
#include "BaseClasses/ProcessFrame.h"
#include "detection/rk_distribution.h"
#include "image/rk_threshold.h"
#include "misc/rktl_Exception.h"
#include "trackers/EventSpies/EventDetectorParams.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/SvmClassification/ClassificationParams.h"

#include <algorithm>

namespace {

constexpr uint32_t sceneChangePeriod = 5000; // ms
constexpr uint32_t fpsPeriod = 10000;        // ms
constexpr unsigned int fpsWindow = 10;       // s
constexpr int32_t smallObject = 11;          // pixels
constexpr uint32_t smallKernel = 5;          // pixels
constexpr uint32_t largeKernel = 11;         // pixels
constexpr uint32_t imageQueueLength = 4;
constexpr uint32_t skipQueueLength = 1;
constexpr float detectorSensitivity = 0.5f;
constexpr float learningWeight = 0.1f;

/// Share of foreground above which the scene counts as changed. It steps from 0.75 to just under 0.5 at a sensitivity of 0.5.
float maxForegroundFor(float sceneSensitivity)
{
    if (sceneSensitivity <= 0.5f)
        return 1.0f - (sceneSensitivity + sceneSensitivity) * 0.25f;
    return 1.0f - (sceneSensitivity * 0.5f + 0.25f);
}

/// Lowest strength of a difference that counts as foreground.
uint32_t strengthThreshold(float backgroundShare)
{
    double const value = (1.0 - backgroundShare) * 255.0;
    if (value < 0.0)
        return 1;
    if (value >= 255.0)
        return 255;
    uint32_t const rounded = static_cast<uint32_t>(value + 0.5);
    return rounded > 1 ? rounded : 1;
}

} // namespace

SimpleTracker::SimpleTracker(rktl::Logger* logger, unsigned int port, bool logFps)
    : LogInterface(logger)
    , mSceneChangeTimer(sceneChangePeriod)
    , mMinWidth(smallObject)
    , mMinHeight(smallObject)
    , mMaxForeground(0.75f)
    , mFpsCalculator(fpsWindow)
    , mFpsTimer(logFps ? fpsPeriod : rktl::Countdown::NEVER)
    , mProxy(port, logger)
{
    rk_detection_init(detectorSensitivity, smallKernel, smallKernel, rk_kernel_square, imageQueueLength, &mDetection);
    rk_set_skip_imageq_len(skipQueueLength, &mDetection);
    mClassification.setLogger(logger);
    mObjectTracker.setLogger(logger);
    mEventDetector.setLogger(logger);
}

SimpleTracker::~SimpleTracker()
{
    dumpStats();
    rk_detection_deinit(&mDetection);
    rk_background_deinit(&mBackground);
}

void SimpleTracker::setLogger(rktl::Logger* logger)
{
    LogInterface::setLogger(logger);
    mProxy.setLogger(logger);
    mObjectTracker.setLogger(logger);
    mClassification.setLogger(logger);
    mEventDetector.setLogger(logger);
}

bool SimpleTracker::fail(rktl::String const& text, int place)
{
    mLastError = text + rktl::String::fromFormat(": SimpleTracker (%d)", place);
    return false;
}

bool SimpleTracker::setParameters(Params const& params)
{
    if (!(params.sensitivity >= 0.0f && params.sensitivity <= 1.0f))
        return fail("Invalid Sensitivity", 474);
    if (!(params.sceneSensitivity >= 0.0f && params.sceneSensitivity <= 1.0f))
        return fail("Invalid Scene Detection Sensitivity", 480);
    setThresholds(params);
    mMaskPolygons = params.maskPolygons;
    mSceneChangeTimer.expire();
    mExclusionMask.resize(0, 0); // the next frame draws it anew
    return setClassification(params) && setTrackerParameters(trackerParameters(params)) && setSpies(params);
}

void SimpleTracker::setThresholds(Params const& params)
{
    float const backgroundShare = MovingObjectParams::getBackgroundThreshold(params.sensitivity);
    log(rktl::LogType::Info, "Initializing: sensitivity = %.2f, minSize=%dx%d", static_cast<double>(backgroundShare),
        params.minWidth, params.minHeight);
    if (params.minWidth > smallObject || params.minHeight > smallObject) {
        rk_detection_deinit(&mDetection);
        rk_detection_init(detectorSensitivity, largeKernel, largeKernel, rk_kernel_square, imageQueueLength, &mDetection);
    }
    mDetection.sensitivity = params.sensitivity;
    mMode = params.mode;
    mMinWidth = params.minWidth;
    mMinHeight = params.minHeight;
    mMinConfidence = static_cast<uint16_t>(std::clamp(params.minConfidence * 100.0f, 0.0f, 65535.0f));
    mMaxForeground = maxForegroundFor(params.sceneSensitivity);
    if (mMode <= peripheralOnly)
        return;
    // Any size: the first frame gives the model its own.
    rk_background_deinit(&mBackground);
    rk_background_init(&mBackground, 100, 100, 1);
    rk_background_set_weight(&mBackground, learningWeight);
    rk_threshold_inittable(mThresholdTable, 256, strengthThreshold(backgroundShare));
}

bool SimpleTracker::setClassification(Params const& params)
{
    if (params.classModels.empty()) {
        mClassification.enable(false);
        return true;
    }
    try {
        ClassificationParams classification(mClassification.getProcessType(), true);
        for (rktl::String const& name : params.classModels) {
            log(rktl::LogType::Info, "Setting model %s", name.c_str());
            classification.setModel(name, ClassificationModel());
        }
        if (!mClassification.setParameters(classification))
            return fail("Unable to set classification parameters", 550);
    } catch (std::exception const& exception) {
        return fail(exception.what(), 559);
    }
    mClassification.enable(true);
    mClassification.setConfidenceThreshold(params.minConfidence);
    return true;
}

ObjectTrackerParams SimpleTracker::trackerParameters(Params const& params)
{
    ObjectTrackerParams tracker;
    tracker.mAdvancedObjectFeatures = 0;
    tracker.mInvalidWindow = rktl::ElapsedTime::fromSeconds(15);
    tracker.mDeferTime = rktl::ElapsedTime();
    tracker.mAlwaysUpdateHistograms = 1;
    tracker.mMinTrackLength = 2;
    tracker.mMaxTrackMerges = 5;
    tracker.mOcclusionZones = params.maskPolygons;
    return tracker;
}

bool SimpleTracker::setTrackerParameters(ObjectTrackerParams const& params)
{
    return mObjectTracker.setParameters(params) || fail("Unable to load tracker parameters", 579);
}

bool SimpleTracker::setSpies(Params const& params)
{
    EventDetectorParams detector(rktl::ElapsedTime::fromMilliseconds(200));
    detector.setProcessingInterval(params.processingInterval);
    detector.getSpyFactories() = params.spies;
    rksl::List<rktl::String> classes;
    for (rktl::String const& name : mClassification.getClassNames())
        classes.push_back(name);
    for (EventSpyFactory& factory : detector.getSpyFactories()) {
        auto* const spy = dynamic_cast<FrameEventSpy*>(factory.getSpy());
        if (spy && (!params.keepSpyClasses || spy->getClasses().empty()))
            spy->setClasses(classes);
    }
    nameSpies(detector.getSpyFactories());
    return mEventDetector.setParameters(detector) || fail("Unable to load event detector parameters", 613);
}

void SimpleTracker::nameSpies(rksl::List<EventSpyFactory>& spies)
{
    int named = 0;
    for (EventSpyFactory& factory : spies) {
        auto* const spy = dynamic_cast<FrameEventSpy*>(factory.getSpy());
        if (spy && spy->getName().empty())
            spy->setName(rktl::String::fromFormat("Spy %d", named++));
    }
}

void SimpleTracker::reset()
{
    mObjectTracker.reset();
    rk_background_deinit(&mBackground);
    mBackground = {};
    mSceneChangeTimer.expire();
}

void SimpleTracker::dumpStats()
{
    mStats.dump([this](rktl::String const& line) { log(rktl::LogType::Info, line); });
    mObjectTracker.dumpStats();
    mClassification.dumpStats();
    mEventDetector.dumpStats();
}

// ---- For clients ----

void SimpleTracker::updateProxy(ProcessFrame& frame)
{
    rksl::Set<rktl::String> wanted = mRequestedImages;
    rkvl::Resolution size;
    mProxy.getRequestedImages(wanted, size);
    if (wanted.empty()) {
        mProxy.updateFrameListeners(frame);
        return;
    }
    struct {
        char const* name;
        rkil::FlatImage<1> const& image;
    } const grayImages[] = {
        {"Peripheral Image", mPeripheralImage},
        {"Processed Image", mProcessedImage},
        {"Activity Image", mActivityImage},
        {"Exclusion Mask", mExclusionMask},
        {"Foreground Image", mForegroundImage},
    };
    constexpr unsigned int gray = rkil::MultiImage::flatGray;
    if (wanted.count("Background Image"))
        setBackgroundImage(frame);
    for (auto const& [name, image] : grayImages) {
        // Morphology has set its result already; where it did not run, the detector's scratch shows.
        bool const isThere = &image == &mProcessedImage && frame.isImageSet(name, gray);
        if (wanted.count(name) && !isThere)
            frame.setImage(name, *image.getImage(), gray);
    }
    mProxy.updateFrameListeners(frame);
}

void SimpleTracker::setBackgroundImage(ProcessFrame& frame)
{
    rkil::FlatImage<4> colour;
    if (mBackground.mode > 0 && colour.resize(mBackground.width, mBackground.height) &&
        rk_background_get_mean(&mBackground, colour.getImage()))
        frame.setImage("Background Image", *colour.getImage(), rkil::MultiImage::flatColour);
    else if (mBackground.mode == 0 && rk_background_get_mean(&mBackground, mWorkImage.getImage()))
        frame.setImage("Background Image", *mWorkImage.getImage(), rkil::MultiImage::flatGray);
}
