#include "trackers/ObjectTrackerLib/ObjectTracker.h"

#include "BaseClasses/ProcessFrame.h"
#include "detection/rk_object.h"
#include "detection/rk_tracker.h"
#include "detection/rk_tracker_frame.h"
#include "image/rk_image.h"
#include "math/rkml_Coordinate.h"
#include "misc/rktl_Exception.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr char const* movingName = "Moving";
constexpr char const* staticName = "Static";
constexpr char const* nativeImage = "Native Image";
constexpr char const* scaledImage = "Native-Scaled";
constexpr char const* processedImage = "Processed Image";
constexpr char const* staticProcessedImage = "Stationary Object Processed";
constexpr unsigned int colourType = 1;
constexpr unsigned int grayType = 2;
constexpr float leastMotionScore = 0.5f;
rktl::ElapsedTime const trackWindow = rktl::ElapsedTime::fromSeconds(15);

/// The gray form of an image, or null when the frame has none.
rk_image const* grayOf(ProcessFrame const& frame, char const* name)
{
    return frame.isImageSet(name, grayType) ? frame.getMultiImage(name).getFlatGray().getImage() : nullptr;
}

rk_image const* maskFor(ProcessFrame const& frame, rktl::String const& name, rk_image const* otherwise)
{
    if (name == movingName)
        return grayOf(frame, processedImage);
    if (name == staticName)
        return grayOf(frame, staticProcessedImage);
    return otherwise;
}

/// A box of the processed frame in pixels of the native one.
rkml::BoundingBox<int> nativeBox(rk_bbox const& box, double scale)
{
    if (scale == 1.0)
        return {static_cast<int>(box.x), static_cast<int>(box.y), static_cast<int>(box.width), static_cast<int>(box.height)};
    auto const scaled = [scale](uint32_t value) { return rkml::coordinateCast<int>(value / scale); };
    return {scaled(box.x), scaled(box.y), scaled(box.width), scaled(box.height)};
}

/// Ids of the other tracks that share this one's box.
rksl::List<rktl::Integer> mergesOf(rk_object const& record, rk_object_list const& list)
{
    rksl::List<rktl::Integer> ids;
    if (!record.merged)
        return ids;
    for (rk_object const* other = list.objects; other; other = other->next)
        if (other != &record && other->merged && other->bbox.x == record.bbox.x && other->bbox.y == record.bbox.y &&
            other->bbox.width == record.bbox.width && other->bbox.height == record.bbox.height)
            ids.push_back(static_cast<int32_t>(other->id));
    ids.sort([](rktl::Integer const& a, rktl::Integer const& b) { return a.value < b.value; });
    return ids;
}

Object::State stateOf(rk_object const& record)
{
    if (record.lost_time)
        return Object::lost;
    return rk_object_nascent(&record) ? Object::nascent : Object::tracked;
}

char const* flagText(rk_object const& record, unsigned char bit)
{
    return record.flags & bit ? "true" : "false";
}

} // namespace

ObjectTracker::ObjectTracker()
    : mLimbo(Limbo(trackWindow))
{
    makeList(movingName, false);
    makeList(staticName, true);
}

ObjectTracker::~ObjectTracker() noexcept
{
    freeLists();
}

rk_object_list& ObjectTracker::makeList(rktl::String const& name, bool isStatic)
{
    auto const [entry, isNew] = mLists.try_emplace(name);
    if (isNew)
        rk_object_list_init(&entry->second, isStatic ? 1 : 0);
    return entry->second;
}

void ObjectTracker::freeLists()
{
    for (auto& [name, list] : mLists)
        rk_object_list_free(&list);
    mLists.clear();
}

bool ObjectTracker::supports(char const* wanted, rkpl::Plugin** result)
{
    return answers<Tracker>(this, wanted, result) || VideoProcess::supports(wanted, result);
}

// ---- For other threads ----

bool ObjectTracker::lock(bool locked)
{
    mLocked = locked;
    return true;
}

bool ObjectTracker::removeObject(uint32_t id)
{
    ObjectsPtr const objects = mObjects.getWritePtr(lockLimit);
    Object* const object = objects ? objects->findObject(id) : nullptr;
    if (!object)
        return false;
    object->setState(Object::removed);
    return true;
}

bool ObjectTracker::getObjects(ObjectMap& map)
{
    auto const objects = mObjects.getReadPtr(lockLimit);
    if (!objects)
        return false;
    auto const limbo = mLimbo.getReadPtr(lockLimit);
    if (!limbo)
        return false;
    for (auto const& [id, object] : *objects)
        map.insert_or_assign(id, object);
    for (auto const& [time, object] : *limbo)
        map.try_emplace(static_cast<int32_t>(object.getId()), object);
    return true;
}

void ObjectTracker::allowResurrection(bool allow)
{
    mAllowResurrection = allow;
    if (allow)
        return;
    LimboPtr const limbo = mLimbo.getWritePtr(lockLimit);
    if (limbo)
        limbo->clear();
}

void ObjectTracker::setResurrectionWindow(rktl::ElapsedTime const& window)
{
    mLimbo.assign(Limbo(std::max(window, rktl::ElapsedTime())), lockLimit);
}

void ObjectTracker::reset()
{
    ObjectsPtr const objects = mObjects.getWritePtr(lockLimit);
    if (!objects)
        return;
    LimboPtr const limbo = mLimbo.getWritePtr(lockLimit);
    if (!limbo)
        return;
    objects->clear();
    limbo->clear();
    freeLists();
    makeList(movingName, false);
    makeList(staticName, true);
    mAdvanced.clear();
}

// ---- The stage ----

rktl::String ObjectTracker::getProcessType() const
{
    return "ObjectTracker";
}

ProcessParams ObjectTracker::getDefaultParameters() const
{
    return ObjectTrackerParams();
}

bool ObjectTracker::setProcesses(std::list<rkpl::PluginPtr<VideoProcess>> const& processes)
{
    for (auto const& process : processes)
        if (process.supports(AdaptiveBackground::identifier, mBackground))
            break;
    return true;
}

void ObjectTracker::getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const
{
    types.try_emplace(scaledImage, 1);
    types.try_emplace(processedImage, 2);
    types.try_emplace(staticProcessedImage, 2);
}

void ObjectTracker::resetProcess()
{
    reset();
}

bool ObjectTracker::onSetParameters(ProcessParams const& params)
{
    ObjectTrackerParams read;
    if (!read.read(params))
        return false;
    auto const isNoArea = [](rkml::Polygon2D<float> const& zone) { return zone.points().size() < 3; };
    if (std::any_of(read.mOcclusionZones.begin(), read.mOcclusionZones.end(), isNoArea)) {
        log(rktl::LogType::Error, "Parameters refused: an occlusion zone has fewer than 3 points.");
        return false;
    }
    mParams = read;
    setResurrectionWindow(mParams.mResurrectionWindow);
    allowResurrection(mParams.mResurrectionWindow > rktl::ElapsedTime());
    return true;
}

void ObjectTracker::onFrameResize(unsigned int width, unsigned int height, double scale)
{
    std::list<rk_segment> segments;
    if (ObjectTrackerParams::generateOcclusions(width, height, scale, mParams.mOcclusionZones, segments))
        mOcclusions.assign(segments.begin(), segments.end());
}

bool ObjectTracker::onProcessFrame(ProcessFrame& frame)
{
    rkil::MultiImage const& image = frame.getMultiImage(frame.getScale() == 1.0 ? nativeImage : scaledImage);
    if (frame.getFlags() & Frame::sceneBreak)
        reset();
    rk_image const* mask = nullptr;
    for (auto& [name, list] : mLists) {
        mask = maskFor(frame, name, nullptr);
        trackRegions(frame, name, list, image, mask);
    }
    for (rktl::String const& name : frame.nameUntracked())
        trackRegions(frame, name, makeList(name, false), image, mask);

    {
        ObjectsPtr const objects = mObjects.getWritePtr(lockLimit);
        if (!objects)
            return false;
        updateObjects(objects, frame);
        if (mParams.mRemoveFalseObjects)
            removeFalseObjects(objects, frame);
        if (mAllowResurrection)
            resurrectObjects(objects, frame.getTimeStamp());
        cleanObjects(objects, frame.getTimeStamp());
    }
    return getObjects(frame.getObjects());
}

// ---- Tracks ----

void ObjectTracker::trackRegions(
    ProcessFrame& frame, rktl::String const& name, rk_object_list& list, rkil::MultiImage const& image, rk_image const* mask)
{
    unsigned int count = 0;
    rk_vertex* const vertices = frame.getUntracked(name, count);
    process(list, image, mask, vertices, count, frame.getPosition());
    frame.maskAsTracked(name);
}

void ObjectTracker::process(rk_object_list& list, rkil::MultiImage const& image, rk_image const* mask, rk_vertex* vertices,
    unsigned int count, rktl::ElapsedTime const& time)
{
    bool const isColour = image.getForm(rkil::MultiImage::flatColour) != nullptr;
    rk_image const* const picture = isColour ? image.getFlatColour().getImage() : image.getFlatGray().getImage();
    rk_tracker_frame frame = {};
    frame.image = const_cast<rk_image*>(picture); // only read
    frame.mask = const_cast<rk_image*>(mask);
    frame.vertices = vertices;
    frame.vertex_count = count;
    frame.min_score = mLocked ? std::numeric_limits<float>::max() : leastMotionScore;
    frame.now = static_cast<uint32_t>(time.toMilliseconds());
    frame.defer_time = static_cast<uint32_t>(mParams.mDeferTime.toMilliseconds());
    frame.segments = mOcclusions.empty() ? nullptr : mOcclusions.data();
    frame.segment_count = static_cast<uint32_t>(mOcclusions.size());
    frame.min_track_length = static_cast<unsigned char>(mParams.mMinTrackLength);
    frame.max_track_merges = static_cast<unsigned char>(mParams.mMaxTrackMerges);
    frame.always_update_histograms = mParams.mAlwaysUpdateHistograms ? 1 : 0;
    list.next_id = mNextId;
    if (list.is_static)
        rk_tracker_static_process(&frame, &list);
    else
        rk_tracker_process(&frame, &list);
    mNextId = list.next_id;
}

// ---- Objects ----

void ObjectTracker::updateObjects(ObjectsPtr objects, ProcessFrame const& frame)
{
    rktl::NodeMap<uint32_t, rktl::ElapsedTime> moving;
    for (auto const& [name, list] : mLists) {
        rktl::String const className = frame.getUntrackedClass(name);
        for (rk_object const* record = list.objects; record; record = record->next) {
            auto const [entry, isNew] = objects->try_emplace(static_cast<int32_t>(record->id), name, trackWindow);
            Object& object = entry->second;
            if (isNew)
                object.setId(record->id);
            if (isNew || object.getState() != Object::removed)
                object.setState(stateOf(*record));
            updateObject(object, *record, list, frame);
            if (!className.empty())
                object.addClass(className);
            if (!isStillValid(record->id, record->motion_score, frame.getPosition(), moving))
                object.setState(Object::invalid);
        }
    }
    mLastMoving.swap(moving);
}

void ObjectTracker::updateObject(Object& object, rk_object const& record, rk_object_list const& list, ProcessFrame const& frame)
{
    rkml::BoundingBox<int> box = nativeBox(record.bbox, frame.getScale());
    object.insert(box, mergesOf(record, list), frame.getTimeStamp());
    object.newest(box);
    if (mParams.mAdvancedHistograms && frame.isImageSet(nativeImage, colourType)) {
        rk_image const* const colour = frame.getMultiImage(nativeImage).getFlatColour().getImage();
        rk_image const* mask = maskFor(frame, object.getType(), nullptr);
        if (mask && (mask->width != colour->width || mask->height != colour->height))
            mask = nullptr;
        mAdvanced[record.id].learnColours(*colour, mask, box, object);
    }
    if (mParams.mAdvancedObjectFeatures)
        if (rk_image const* const gray = grayOf(frame, nativeImage))
            mAdvanced[record.id].learnUniformity(*gray, box, object);
    object.setAttribute("Near Edge", flagText(record, RK_OBJECT_NEAR_EDGE));
    object.setAttribute("Near Occlusion", flagText(record, RK_OBJECT_NEAR_SEGMENT));
    object.setAttribute("Average Width", rktl::String::fromFloat(record.average_width.value, 6));
    object.setAttribute("Average Height", rktl::String::fromFloat(record.average_height.value, 6));
}

/// An object that stops moving stays valid for a while; one that never moved is invalid at once.
bool ObjectTracker::isStillValid(
    uint32_t id, float motionScore, rktl::ElapsedTime const& now, rktl::NodeMap<uint32_t, rktl::ElapsedTime>& moving) const
{
    if (motionScore >= leastMotionScore) {
        moving[id] = now;
        return true;
    }
    auto const last = mLastMoving.find(id);
    if (last == mLastMoving.end() || now > last->second + mParams.mInvalidWindow)
        return false;
    moving[id] = last->second;
    return true;
}

void ObjectTracker::cleanObjects(ObjectsPtr objects, rktl::TimeStamp const& time)
{
    LimboPtr const limbo = mLimbo.getWritePtr(lockLimit);
    if (!limbo)
        return;
    for (auto entry = objects->begin(); entry != objects->end();) {
        Object const& object = entry->second;
        rktl::TimeStamp newest;
        bool const isOver = object.getState() == Object::invalid || (object.newestTime(newest) && newest < time);
        entry = isOver ? purgeObject(static_cast<uint32_t>(entry->first.value), objects, limbo) : std::next(entry);
    }
}

ObjectMap::iterator ObjectTracker::purgeObject(uint32_t id, ObjectsPtr objects, LimboPtr limbo)
{
    static rktl::ElapsedTime const leastAge = rktl::ElapsedTime::fromMilliseconds(2500);
    auto const failure = [](char const* message) {
        return rktl::Exception("projects/src/trackers/ObjectTrackerLib/ObjectTracker", "ObjectTracker", message);
    };
    if (!objects)
        throw failure("purgeObject - No pointer to living objects.");
    auto const entry = objects->find(static_cast<int32_t>(id));
    if (entry == objects->end())
        return objects->end();
    Object& object = entry->second;
    rktl::TimeStamp newest;
    if (mAllowResurrection && object.newestTime(newest) && object.age() >= leastAge) {
        if (!limbo)
            throw failure("purgeObject - No pointer to limbo objects.");
        object.setState(Object::purged);
        limbo->insert(object, newest);
    }
    auto const list = mLists.find(object.getType());
    if (list != mLists.end())
        rk_object_list_remove(&list->second, id);
    mAdvanced.erase(id);
    return objects->erase(entry);
}
