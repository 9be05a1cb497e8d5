#pragma once

#include "BaseClasses/Event.h"
#include "BaseClasses/StepStatistics.h"
#include "Meridane/Subsystem/OutputProxy.h"
#include "detection/rk_background.h"
#include "detection/rk_detection.h"
#include "image/rkil_FlatImage.h"
#include "image/rkil_MaskImage.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_Countdown.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_FpsCalculator.h"
#include "misc/rktl_LogInterface.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "trackers/EventSpies/EventDetector.h"
#include "trackers/EventSpies/EventSpyFactory.h"
#include "trackers/ObjectTrackerLib/ObjectTracker.h"
#include "trackers/SvmClassification/SvmClassification.h"

#include <cstdint>

class ObjectTrackerParams;
class ProcessFrame;
namespace rkil {
class MultiImage;
}

/// Runs the whole analysis of one camera frame: two detectors of motion, a guard against changes of the light, morphology,
/// connected components, the stages of tracking, classification and events, the upkeep of the background model, and the
/// delivery to the server. The frame thread alone uses it.
class SimpleTracker : private LogInterface {
public:
    /// Which detectors run.
    enum Mode : int32_t { noDetector = 1, peripheralOnly = 2, backgroundOnly = 3, bothDetectors = 4 };

    struct Params {
        float sensitivity = 0.5f;                        ///< of the background comparison, 0 to 1
        float sceneSensitivity = 0.5f;                   ///< readiness to call a frame a scene change, 0 to 1
        float minConfidence = 0.5f;                      ///< below it, classified events are dropped, 0 to 1
        int32_t minWidth = 5;                            ///< smallest region, pixels
        int32_t minHeight = 11;                          ///< smallest region, pixels
        int32_t mode = 0;                                ///< Mode
        rksl::Set<rktl::String> classModels;             ///< paths of model files
        rksl::List<rkml::Polygon2D<float>> maskPolygons; ///< not watched; each wholly in 0 to 1 or wholly in pixels
        rksl::List<EventSpyFactory> spies;               ///< the rules to run
        rktl::ElapsedTime processingInterval;            ///< least spacing of the frames that the rules see
        bool keepSpyClasses = false; ///< rules that name classes keep them; the others get those of the models, as all do else
    };

    /// logger: not owned; may be null. port: of the server; 0 for none. logFps: one line every 10 s.
    SimpleTracker(rktl::Logger* logger, unsigned int port, bool logFps);
    ~SimpleTracker() override;
    SimpleTracker(SimpleTracker const&) = delete;
    SimpleTracker& operator=(SimpleTracker const&) = delete;

    /// To be called before the first frame. False: getLastError says why, and the steps before that are in force.
    bool setParameters(Params const& params);

    /// The same with other values for the tracking stage than this application's own, for trying settings on recordings.
    bool setTrackerParameters(ObjectTrackerParams const& params);
    /// What setParameters gives the tracking stage.
    static ObjectTrackerParams trackerParameters(Params const& params);
    /// Gives rules without a name "Spy 0", "Spy 1" and so on, as setParameters does with its copies.
    static void nameSpies(rksl::List<EventSpyFactory>& spies);

    /// colour: the frame's "Native Image" has four channels, else one. events: the frame's events are added.
    /// False: getLastError says why, and the later steps were not done.
    bool process(ProcessFrame& frame, bool colour, rksl::List<Event>& events);

    /// "TEXT: SimpleTracker (PLACE)" of the last failure.
    rktl::String const& getLastError() const { return mLastError; }

    /// Forgets tracks and scene.
    void reset();

    /// Durations of all steps, as INFO lines.
    void dumpStats();

    void setLogger(rktl::Logger* logger) override;

    /// The stage of classification, for its models, samples and training; from the frame thread, between frames. It runs once it
    /// has models, and whoever wants samples without them enables it.
    SvmClassification& getClassification() { return mClassification; }

    /// Asks for images by name besides those that clients ask for; they are set on each frame.
    void requestImages(rksl::Set<rktl::String> const& names) { mRequestedImages = names; }

private:
    // The steps of a frame, in their order.
    rkil::MultiImage const* inputImage(ProcessFrame const& frame, bool colour);
    void followSceneChange(ProcessFrame& frame);
    bool ensureImages(unsigned int width, unsigned int height);
    bool detectPeripheral(rkil::MultiImage const& image, bool colour, uint32_t time, uint32_t& foreground);
    bool compareBackground(rk_image const& input, bool colour, uint32_t time, uint32_t& foreground);
    void matchModel(rk_image const& input, bool colour);
    void checkScene(ProcessFrame& frame, uint32_t foreground, uint32_t pixels);
    bool findRegions(ProcessFrame& frame, rk_vertex*& regions);
    bool closeImage(ProcessFrame& frame);
    void filterRegions(rk_vertex*& regions);
    void runStages(ProcessFrame& frame);
    void runStage(char const* name, VideoProcess& stage, ProcessFrame& frame);
    bool updateBackground(rk_image const& input, bool colour, uint32_t time);
    void measureRate(ProcessFrame& frame);
    void updateProxy(ProcessFrame& frame);
    void setBackgroundImage(ProcessFrame& frame);

    void filterEvents(rksl::List<Event>& events) const;
    void updateMask(unsigned int width, unsigned int height);
    static void updateMask(ObjectMap const& objects, rkil::FlatImage<1>& mask);
    void pruneObjects();
    static bool isObsolete(Object const& object, double& widthConfidence, double& heightConfidence, bool& nearEdge);
    static bool isStable(double widthConfidence, double heightConfidence);

    // The steps of setParameters.
    void setThresholds(Params const& params);
    bool setClassification(Params const& params);
    bool setSpies(Params const& params);

    bool usesPeripheral() const { return mMode == peripheralOnly || mMode == bothDetectors; }
    bool usesBackground() const { return mMode == backgroundOnly || mMode == bothDetectors; }
    bool fail(rktl::String const& text, int place);

    rk_detection mDetection = {};
    rk_background mBackground = {};
    rkil::FlatImage<1> mProcessedImage;  // scratch of the peripheral detector, then the foreground of two values
    rkil::FlatImage<1> mWorkImage;       // scratch of morphology; masked gray input; gray "Background Image"
    rkil::FlatImage<1> mPeripheralImage; // what moved lately
    rkil::FlatImage<1> mActivityImage;   // 255 where the model learns, 0 where it does not
    rkil::FlatImage<1> mForegroundImage; // strength of the difference from the model
    rkil::FlatImage<4> mMaskedColour;
    rkil::MaskImage mExclusionMask;
    rktl::Countdown mSceneChangeTimer;
    bool mSceneChange = false;
    unsigned char mThresholdTable[256] = {};
    int32_t mMinWidth;
    int32_t mMinHeight;
    uint32_t mLastUpdate = 0; // stream time in ms of the model's last update
    int32_t mMode = bothDetectors;
    float mMaxForeground; // share of foreground above which the scene counts as changed
    rktl::String mLastError;
    rktl::FpsCalculator mFpsCalculator;
    rktl::Countdown mFpsTimer;
    OutputProxy mProxy;
    rksl::Set<rktl::String> mRequestedImages;
    StepStatistics mStats;
    rksl::List<rkml::Polygon2D<float>> mMaskPolygons;
    ObjectTracker mObjectTracker;
    SvmClassification mClassification;
    EventDetector mEventDetector;
    uint16_t mMinConfidence = 50; // percent
};
