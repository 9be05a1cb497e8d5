#include <gtest/gtest.h>

#include "BaseClasses/ObjectMap.h"

using Box = rkml::BoundingBox<int>;

namespace {

rktl::TimeStamp at(int64_t milliseconds)
{
    return rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'000'000'000'000 + milliseconds));
}

Object& add(ObjectMap& map, int id, Box const& box, int64_t time)
{
    Object& object = map.try_emplace(id, "Moving", rktl::ElapsedTime(15000)).first->second;
    object.setId(static_cast<uint32_t>(id));
    object.insert(box, {}, at(time));
    return object;
}

std::string idsOf(ObjectMap const& map)
{
    std::string text;
    for (auto const& [id, object] : map)
        text += std::to_string(id.value) + ":" + std::to_string(object.getId()) + " ";
    return text;
}

} // namespace

TEST(ObjectMap, FollowsAnotherAndKeepsPaths)
{
    ObjectMap map, other;
    add(map, 1, {1, 1, 1, 1}, 0);
    add(map, 2, {2, 2, 2, 2}, 0);
    add(other, 2, {3, 2, 2, 2}, 40);
    add(other, 4, {4, 4, 4, 4}, 40).setType("Static");
    map.update(other, rktl::ElapsedTime(500));
    EXPECT_EQ("2:2 4:4 ", idsOf(map));
    EXPECT_EQ(2u, map.findObject(2)->getTrack().size());
    EXPECT_EQ(500, map.findObject(4)->getTrack().getWindow().toMilliseconds());
    EXPECT_EQ("Static", map.findObject(4)->getType());
}
