#include "trackers/ObjectTrackerLib/ObjectTracker.h"

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_image.h"
#include "image/rkil_FlatImage.h"
#include "math/rkml_ClipBox.h"
#include "math/rkml_Coordinate.h"

#include <cstring>

// Static objects that a plug-in finds false, such as the place that a parked car has left, are removed, and their pixels are
// taken out of the activity so that the scene learns them.

namespace {

constexpr char const* activityImage = "Activity Image";
constexpr unsigned int grayType = 2;
constexpr int margin = 5; // pixels around a box that belong to its surroundings
constexpr float scoreWeight = 0.1f;
constexpr float falseAbove = 0.75f;

rkml::BoundingBox<int> grownBox(rkml::BoundingBox<int> const& box, double scale, rk_image const& image)
{
    auto const scaled = [scale](int value) { return rkml::coordinateCast<int>(value * scale); };
    return rkml::clipBox(
        {scaled(box.x) - 2, scaled(box.y) - 2, scaled(box.width) + 4, scaled(box.height) + 4}, image.width, image.height);
}

void blank(rk_image& image, rkml::BoundingBox<int> const& box)
{
    for (int row = box.y; row < box.y + box.height; ++row)
        memset(image.data + size_t(row) * image.width + box.x, 0, static_cast<size_t>(box.width));
}

} // namespace

void ObjectTracker::removeFalseObjects(ObjectsPtr objects, ProcessFrame& frame)
{
    if (!mBackground || !frame.isImageSet(activityImage, grayType))
        return;
    rkil::FlatImage<1> activity(frame.getMultiImage(activityImage).getFlatGray());
    frame.unsetImage(activityImage);
    std::map<rkml::BoundingBox<int>, float> judged;
    for (auto& [id, object] : *objects)
        if (object.getType() == "Static" && !object.getTrack().empty())
            judgeObject(object, *objects, frame, *activity.getImage(), judged);
    frame.setImage(activityImage, *activity.getImage(), grayType);
    std::erase_if(mFalseScores, [&](auto const& entry) { return !objects->findObject(entry.first); });
}

void ObjectTracker::judgeObject(Object& object, ObjectMap const& objects, ProcessFrame& frame, rk_image& activity,
    std::map<rkml::BoundingBox<int>, float>& judged)
{
    rkml::BoundingBox<int> const box = grownBox(object.getTrack().newest().mBox, frame.getScale(), activity);
    if (checkOverlap(box, objects, "Moving"))
        return;
    auto const [entry, isNew] = mFalseScores.try_emplace(object.getId());
    rk_running_avg& average = entry->second;
    if (isNew)
        rk_running_avg_reset(&average, scoreWeight);
    auto const known = judged.find(box);
    float score = 0.0f;
    if (known != judged.end()) {
        rk_running_avg_add(&average, known->second);
        if (average.value > falseAbove)
            object.setState(Object::invalid);
    } else if (mBackground->falseScore(frame, object.getType(), box, margin, score)) {
        rk_running_avg_add(&average, score);
        if (average.value > falseAbove) {
            object.setState(Object::invalid);
            blank(activity, box);
        }
        judged.emplace(box, score);
    }
    object.setAttribute("False Confidence", rktl::String::fromFormat("%f", static_cast<double>(average.value)));
}

bool ObjectTracker::checkOverlap(rkml::BoundingBox<int> const& box, ObjectMap const& objects, rktl::String const& type)
{
    for (auto const& [id, object] : objects) {
        rkml::BoundingBox<int> other;
        if (object.getType() != type || object.getState() <= Object::purged || !object.newest(other))
            continue;
        if (std::max(box.x, other.x) < std::min(box.x + box.width, other.x + other.width) &&
            std::max(box.y, other.y) < std::min(box.y + box.height, other.y + other.height))
            return true;
    }
    return false;
}
