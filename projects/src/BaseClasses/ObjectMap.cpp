#include "BaseClasses/ObjectMap.h"

#include <algorithm>
#include <set>

namespace {

double sharedArea(rkml::BoundingBox<int> const& a, rkml::BoundingBox<int> const& b)
{
    double const width = std::min(double(a.x) + a.width, double(b.x) + b.width) - std::max(a.x, b.x);
    double const height = std::min(double(a.y) + a.height, double(b.y) + b.height) - std::max(a.y, b.y);
    return width > 0 && height > 0 ? width * height : 0.0;
}

bool showOneThing(rkml::BoundingBox<int> const& a, rkml::BoundingBox<int> const& b, double overlap)
{
    double const area = double(b.width) * b.height;
    return a == b || (overlap != 0 && sharedArea(a, b) / area > overlap);
}

rktl::Integer key(uint32_t id)
{
    return static_cast<int32_t>(id);
}

} // namespace

Object* ObjectMap::findObject(uint32_t id)
{
    auto const found = find(key(id));
    return found != end() ? &found->second : nullptr;
}

Object const* ObjectMap::findObject(uint32_t id) const
{
    auto const found = find(key(id));
    return found != end() ? &found->second : nullptr;
}

bool ObjectMap::swapObjects(uint32_t a, uint32_t b)
{
    Object* const first = findObject(a);
    Object* const second = findObject(b);
    if (!first || !second)
        return false;
    std::swap(*first, *second);
    first->setId(a);
    second->setId(b);
    return true;
}

void ObjectMap::update(ObjectMap const& other, rktl::ElapsedTime const& window)
{
    std::erase_if(*this, [&](auto const& entry) { return other.find(entry.first) == other.end(); });
    for (auto const& [id, object] : other) {
        auto const place = try_emplace(id, object.getType(), window).first;
        place->second.update(object);
    }
}

void ObjectMap::removeDuplicates(double overlap)
{
    std::set<int32_t> duplicates;
    for (auto const& [idA, a] : *this) {
        if (duplicates.count(idA) || a.getTrack().empty())
            continue;
        for (auto const& [idB, b] : *this) {
            if (idA == idB || duplicates.count(idB) || b.getTrack().empty())
                continue;
            if (a.getTrack().newestTime() == b.getTrack().newestTime() &&
                showOneThing(a.getTrack().newest().mBox, b.getTrack().newest().mBox, overlap))
                duplicates.insert(std::max<int32_t>(idA, idB));
        }
    }
    for (int32_t const id : duplicates)
        erase(rktl::Integer(id));
}
