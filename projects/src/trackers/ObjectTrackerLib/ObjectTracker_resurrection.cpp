#include "trackers/ObjectTrackerLib/ObjectTracker.h"

#include "detection/rk_object.h"

// A track that breaks off, behind a tree for instance, leaves an object in limbo. When a young object then appears near where
// that one ended, with the same colours, it is the same thing: it takes over the old id and the old path.

namespace {

rktl::ElapsedTime const youngest = rktl::ElapsedTime::fromMilliseconds(500);
rktl::ElapsedTime const oldest = rktl::ElapsedTime::fromMilliseconds(5000);

} // namespace

void ObjectTracker::resurrectObjects(ObjectsPtr objects, rktl::TimeStamp const& time)
{
    std::map<uint32_t, Object> ancestors; // by the id of the object that continues it
    {
        LimboPtr const limbo = mLimbo.getWritePtr(lockLimit);
        if (!limbo)
            return;
        limbo->clean(time);
        for (auto& [id, object] : *objects) {
            object.setFullTrack(false);
            if (object.age() < youngest || object.age() > oldest)
                continue;
            double score = -1.0;
            auto const best = findAncestor(object, *limbo, score);
            if (best == limbo->end() || score <= mParams.mResurrectionConfidence)
                continue;
            log(rktl::LogType::Info, "Resurrecting %d for %d with %f confidence.", static_cast<int>(best->second.getId()),
                static_cast<int>(id.value), score);
            ancestors.insert_or_assign(static_cast<uint32_t>(id.value), best->second);
            limbo->erase(best);
        }
    }
    for (auto const& [id, ancestor] : ancestors)
        resurrectObject(id, ancestor, objects);
}

/// The object in limbo that ended close to where this one began and looks most like it; score: how much.
ObjectTracker::Limbo::iterator ObjectTracker::findAncestor(Object const& object, Limbo& limbo, double& score) const
{
    rkml::Point2D<int> const birth = object.getFirstBox().centre();
    auto best = limbo.end();
    for (auto entry = limbo.begin(); entry != limbo.end(); ++entry) {
        Object const& candidate = entry->second;
        rkml::BoundingBox<int> box;
        if (candidate.getId() >= object.getId() || !candidate.newest(box) || candidate.getType() != object.getType())
            continue;
        if (birth.distanceTo(box.centre()) >= mParams.mResurrectionDistance)
            continue;
        double const likeness = object.compareHistogram(candidate);
        if (likeness > score) {
            score = likeness;
            best = entry;
        }
    }
    return best;
}

bool ObjectTracker::resurrectObject(uint32_t id, Object const& ancestor, ObjectsPtr objects)
{
    uint32_t const oldId = ancestor.getId();
    Object* const found = objects->findObject(id);
    if (oldId == 0 || objects->findObject(oldId) || !found)
        return false;
    Object& object = *found;
    object.mergeTrack(ancestor);
    object.setState(Object::resurrected);
    object.setId(oldId);
    if (object.getType() != "Static")
        object.setFullTrack(true);
    object.setAttribute("GUID", ancestor.getAttribute("GUID"));
    mAdvanced.erase(id); // what was learned under the id that nobody has any more
    auto entry = objects->extract(static_cast<int32_t>(id));
    entry.key() = static_cast<int32_t>(oldId);
    objects->insert(std::move(entry));
    auto const list = mLists.find(object.getType());
    rk_object* const record = list != mLists.end() ? rk_object_list_find(&list->second, id) : nullptr;
    if (!record)
        return false;
    record->id = oldId;
    return true;
}
