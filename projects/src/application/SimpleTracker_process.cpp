#include "application/SimpleTracker.h"

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_morphology.h"
#include "image/rk_threshold.h"
#include "image/rkil_MultiImage.h"
#include "math/rk_bbox.h"
#include "math/rkml_ClipBox.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr char const* nativeImage = "Native Image";
constexpr uint32_t warmUp = 5000;        // ms of stream time without comparison, in which the model learns every frame
constexpr uint32_t updateInterval = 500; // ms of stream time
constexpr uint32_t peripheralCount = 10; // stands for the foreground until there is a comparison
constexpr uint32_t leastForeground = 10; // pixels
constexpr uint32_t leastMotionPixels = 10;
constexpr float leastMotionShare = 0.15f;
constexpr float settledWeight = 0.1f;
constexpr float changingWeight = 0.01f;
constexpr int32_t smallObject = 11; // pixels
constexpr int maskMargin = 5;       // pixels around an object that do not learn either

rk_image const* flatOf(rkil::MultiImage const& image, bool colour)
{
    return colour ? image.getFlatColour().getImage() : image.getFlatGray().getImage();
}

} // namespace

bool SimpleTracker::process(ProcessFrame& frame, bool colour, rksl::List<Event>& events)
{
    rkil::MultiImage const* const image = inputImage(frame, colour);
    if (!image)
        return false;
    rk_image const& input = *flatOf(*image, colour);
    followSceneChange(frame);
    uint32_t const time = static_cast<uint32_t>(frame.getPosition().toMilliseconds());
    if (!ensureImages(input.width, input.height))
        return false;
    updateMask(input.width, input.height);

    uint32_t foreground = 0;
    if (usesPeripheral() && !detectPeripheral(*image, colour, time, foreground))
        return false;
    if (usesBackground() && !compareBackground(input, colour, time, foreground))
        return false;
    checkScene(frame, foreground, input.width * input.height);

    // From here on the frame's regions are known: what stages and clients see is made of them.
    rk_vertex* regions = nullptr;
    if (!mSceneChange && foreground >= leastForeground && !findRegions(frame, regions)) {
        rk_free_vertices(&regions);
        return false;
    }
    frame.spliceUntracked(&regions, "Moving", ProcessFrame::all);
    runStages(frame);
    mEventDetector.getEvents(events);
    filterEvents(events);

    if (mMode == backgroundOnly)
        pruneObjects();
    if (!updateBackground(input, colour, time))
        return false;
    measureRate(frame);
    updateProxy(frame);
    if (mFpsTimer.hasExpired()) {
        log(rktl::LogType::Info, "Fps = %f", mFpsCalculator.calcFps());
        mFpsTimer.restart();
    }
    return true;
}

rkil::MultiImage const* SimpleTracker::inputImage(ProcessFrame const& frame, bool colour)
{
    auto const form = colour ? rkil::MultiImage::flatColour : rkil::MultiImage::flatGray;
    if (!frame.isImageSet(nativeImage, form)) {
        fail("Invalid Input Image", 120);
        return nullptr;
    }
    rkil::MultiImage const& image = frame.getMultiImage(nativeImage);
    if (!image.getForm(form)) {
        fail("Invalid Input Image", 138);
        return nullptr;
    }
    return &image;
}

void SimpleTracker::followSceneChange(ProcessFrame& frame)
{
    bool const isOver = mSceneChangeTimer.hasExpired();
    if (mSceneChange && isOver) {
        log(rktl::LogType::Info, "Lighting change finished ... ");
        mStats.start("rk_background_set_weight");
        rk_background_set_weight(&mBackground, settledWeight);
        mStats.stop("rk_background_set_weight");
    }
    mSceneChange = !isOver;
    frame.setAttribute("scene-change", mSceneChange ? "true" : "false");
}

bool SimpleTracker::ensureImages(unsigned int width, unsigned int height)
{
    int place = 157;
    for (auto* const image : {&mWorkImage, &mProcessedImage, &mForegroundImage, &mPeripheralImage, &mActivityImage}) {
        if (!rk_ensure_image(image->getImage(), width, height, 1))
            return fail("Invalid Input Image", place);
        ++place;
    }
    return true;
}

void SimpleTracker::updateMask(unsigned int width, unsigned int height)
{
    if (mExclusionMask.getWidth() == width && mExclusionMask.getHeight() == height)
        return;
    mExclusionMask.setMaskPolygons(mMaskPolygons);
    mExclusionMask.resize(width, height);
}

// ---- Detectors ----

bool SimpleTracker::detectPeripheral(rkil::MultiImage const& image, bool colour, uint32_t time, uint32_t& foreground)
{
    rk_image const* input = flatOf(image, colour);
    if (!mMaskPolygons.empty()) {
        mStats.start("maskImage");
        if (colour) {
            rk_ensure_image(mMaskedColour.getImage(), input->width, input->height, 4);
            mExclusionMask.maskImage<4>(image.getFlatColour(), mMaskedColour);
            input = mMaskedColour.getImage();
        } else {
            mExclusionMask.maskImage<1>(image.getFlatGray(), mWorkImage);
            input = mWorkImage.getImage();
        }
        mStats.stop("maskImage");
    }
    foreground = peripheralCount;
    mStats.start("rk_process");
    // Where the comparison follows, it overwrites what the detector leaves in its scratch.
    auto const detect = usesBackground() && time > warmUp ? rk_process_motion : rk_process;
    if (!detect(input, mProcessedImage.getImage(), mPeripheralImage.getImage(), &mDetection))
        return fail("Peripheral Detection Failed", 193);
    mStats.stop("rk_process");
    return true;
}

bool SimpleTracker::compareBackground(rk_image const& input, bool colour, uint32_t time, uint32_t& foreground)
{
    matchModel(input, colour);
    if (time <= warmUp)
        return true;
    rk_image const* const mask = mMaskPolygons.empty() ? nullptr : mExclusionMask.getImage();
    mStats.start("rk_background_compare");
    if (!rk_background_compare(&mBackground, &input, mask, mForegroundImage.getImage(), &foreground))
        return fail("Background Comparision Failed", 219);
    mStats.stop("rk_background_compare");
    mStats.start("rk_threshold_gray");
    if (!rk_threshold_gray(mThresholdTable, 256, mForegroundImage.getImage(), mProcessedImage.getImage()))
        return fail("Threshold Image Failed", 223);
    mStats.stop("rk_threshold_gray");
    return true;
}

/// A model of another size or mode than the frame's starts anew: all that was learned is lost.
void SimpleTracker::matchModel(rk_image const& input, bool colour)
{
    int32_t const mode = colour ? 1 : 0;
    if (mBackground.width == input.width && mBackground.height == input.height && mBackground.mode == mode)
        return;
    log(rktl::LogType::Info, "Now processing in %s mode", colour ? "color" : "grayscale");
    rk_background_deinit(&mBackground);
    rk_background_init(&mBackground, input.width, input.height, mode);
    rk_background_set_weight(&mBackground, settledWeight);
    log(rktl::LogType::Info, "Initialization done ...");
}

void SimpleTracker::checkScene(ProcessFrame& frame, uint32_t foreground, uint32_t pixels)
{
    float const ratio = static_cast<float>(foreground) / static_cast<float>(pixels);
    frame.setAttribute("foreground-pixels", rktl::String::fromFloat(ratio, 6));
    if (!(ratio > mMaxForeground))
        return;
    if (!mSceneChange) {
        rk_background_set_weight(&mBackground, changingWeight);
        log(rktl::LogType::Info, "Max foreground pixel count exceeded ...");
    }
    mSceneChangeTimer.restart();
    mSceneChange = true;
}

// ---- Regions ----

bool SimpleTracker::findRegions(ProcessFrame& frame, rk_vertex*& regions)
{
    mStats.start("CloseImage");
    if (!closeImage(frame))
        return false;
    mStats.stop("CloseImage");
    uint32_t count = 0;
    mStats.start("rk_conncomp_process");
    if (!rk_conncomp_process(mProcessedImage.getImage(), 255, &mDetection.conncomp, &mDetection.kernel, &regions, &count))
        return fail("Connected Components Failed", 281);
    mStats.stop("rk_conncomp_process");
    filterRegions(regions);
    return true;
}

/// Opening drops specks, closing joins what a gap has split; which comes first depends on the size of what is watched for.
bool SimpleTracker::closeImage(ProcessFrame& frame)
{
    struct Sequence {
        int firstPlace;
        int count;
        rk_morphology_step steps[4];
    };
    static constexpr Sequence open = {273, 2, {rk_step_erode, rk_step_dilate}};
    static constexpr Sequence openThenClose = {256, 4, {rk_step_erode, rk_step_dilate, rk_step_dilate, rk_step_erode}};
    static constexpr Sequence closeThenOpen = {263, 4, {rk_step_dilate, rk_step_erode, rk_step_erode, rk_step_dilate}};

    bool const large = mMinWidth > smallObject || mMinHeight > smallObject;
    Sequence const& sequence = mMode <= peripheralOnly ? open : large ? openThenClose : closeThenOpen;
    int const done = rk_morphology(mProcessedImage.getImage(), mWorkImage.getImage(), sequence.steps, sequence.count);
    if (done < sequence.count)
        return fail("Peripheral Detection Failed", sequence.firstPlace + done);
    if (mMode > peripheralOnly)
        frame.setImage("Processed Image", *mProcessedImage.getImage(), rkil::MultiImage::flatGray);
    return true;
}

/// Drops regions that are too small, and says of the others whether they move.
void SimpleTracker::filterRegions(rk_vertex*& regions)
{
    for (rk_vertex** link = &regions; *link;) {
        rk_vertex& region = **link;
        if (static_cast<int64_t>(region.width) < mMinWidth || static_cast<int64_t>(region.height) < mMinHeight) {
            *link = region.next;
            region.next = nullptr;
            rk_vertex* dropped = &region;
            rk_free_vertices(&dropped);
            continue;
        }
        if (mMode == backgroundOnly) {
            region.motion_score = 1.0f;
        } else {
            rk_bbox const box = {region.x, region.y, region.width, region.height};
            uint32_t moving = 0;
            float const share = rk_image_count(&box, mPeripheralImage.getImage(), 1, &moving);
            region.motion_score = moving >= leastMotionPixels && share > leastMotionShare ? 1.0f : 0.0f;
        }
        link = &region.next;
    }
}

// ---- Stages ----

void SimpleTracker::runStages(ProcessFrame& frame)
{
    runStage("ObjectTracker::processFrame", mObjectTracker, frame);
    if (mClassification.isEnabled())
        runStage("SvmClassification::processFrame", mClassification, frame);
    runStage("EventDetector::processFrame", mEventDetector, frame);
}

/// A stage reports its own failures, and stops none of the others.
void SimpleTracker::runStage(char const* name, VideoProcess& stage, ProcessFrame& frame)
{
    mStats.start(name);
    if (stage.processFrame(frame))
        mStats.stop(name);
}

void SimpleTracker::filterEvents(rksl::List<Event>& events) const
{
    if (mClassification.isEnabled())
        events.remove_if([this](Event const& event) { return event.getConfidence() < mMinConfidence; });
}

// ---- Upkeep of the scene ----

bool SimpleTracker::updateBackground(rk_image const& input, bool colour, uint32_t time)
{
    bool const isDue = mSceneChange || mLastUpdate < warmUp || time - mLastUpdate > updateInterval;
    if (mMode <= peripheralOnly || !isDue)
        return true;
    ObjectMap objects;
    mObjectTracker.getObjects(objects);
    mStats.start("updateMask");
    updateMask(objects, mActivityImage);
    mStats.stop("updateMask");
    mStats.start("rk_background_update");
    if (!rk_background_update(
            &mBackground, colour ? nullptr : &input, colour ? &input : nullptr, mActivityImage.getImage()->data))
        return fail("Background Update Failed", colour ? 344 : 348);
    mStats.stop("rk_background_update");
    mLastUpdate = time;
    return true;
}

/// The model learns everywhere but where objects move.
void SimpleTracker::updateMask(ObjectMap const& objects, rkil::FlatImage<1>& mask)
{
    rk_image& image = *mask.getImage();
    memset(image.data, 255, image.size);
    for (auto const& [id, object] : objects) {
        rkml::BoundingBox<int> box;
        bool const isThere = object.getState() == Object::nascent || object.getState() > Object::purged;
        if (object.getType() != "Moving" || !isThere || !object.newest(box))
            continue;
        box = rkml::clipBox({box.x - maskMargin, box.y - maskMargin, box.width + 2 * maskMargin, box.height + 2 * maskMargin},
            image.width, image.height);
        for (int row = box.y; row < box.y + box.height; ++row)
            memset(image.data + size_t(row) * image.width + box.x, 0, static_cast<size_t>(box.width));
    }
}

/// Objects that have stood for long, and firmly, have become part of the scene.
void SimpleTracker::pruneObjects()
{
    ObjectMap objects;
    mObjectTracker.getObjects(objects);
    rksl::Set<rktl::Integer> obsolete;
    for (auto const& [id, object] : objects) {
        double widthConfidence = 0.0, heightConfidence = 0.0;
        bool nearEdge = false;
        rkml::BoundingBox<int> box;
        if (!isObsolete(object, widthConfidence, heightConfidence, nearEdge) || !object.newest(box))
            continue;
        box = rkml::clipBox(box, mBackground.width, mBackground.height);
        rk_bbox const region = {static_cast<uint32_t>(box.x), static_cast<uint32_t>(box.y), static_cast<uint32_t>(box.width),
            static_cast<uint32_t>(box.height)};
        rk_background_reset_region(&mBackground, &region);
        log(rktl::LogType::Info, "Removing object %d:  %.2f, %.2f, %s, %s", id.value, widthConfidence, heightConfidence,
            isStable(widthConfidence, heightConfidence) ? "stable" : "unstable",
            nearEdge ? "touching edge" : "not touching edge");
        obsolete.insert(id);
    }
    for (rktl::Integer const& id : obsolete)
        mObjectTracker.removeObject(static_cast<uint32_t>(id.value));
}

bool SimpleTracker::isStable(double widthConfidence, double heightConfidence)
{
    constexpr double least = 0.95f; // as a float
    return widthConfidence > least && heightConfidence > least;
}

bool SimpleTracker::isObsolete(Object const& object, double& widthConfidence, double& heightConfidence, bool& nearEdge)
{
    static rktl::ElapsedTime const leastAge = rktl::ElapsedTime::fromSeconds(15);
    rktl::String const& width = object.getAttribute("Width Confidence");
    rktl::String const& height = object.getAttribute("Height Confidence");
    rktl::String const& edge = object.getAttribute("Near Edge");
    if (width.empty() || height.empty() || edge.empty())
        return false;
    widthConfidence = strtod(width.c_str(), nullptr);
    heightConfidence = strtod(height.c_str(), nullptr);
    nearEdge = edge.toBool();
    return object.age() > leastAge && (isStable(widthConfidence, heightConfidence) || nearEdge);
}

void SimpleTracker::measureRate(ProcessFrame& frame)
{
    frame.setProcessFps(mFpsCalculator.calcFps());
    mFpsCalculator.update(rktl::TimeStamp::systemTime());
}
