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

TEST(ObjectMap, RemovesDuplicates)
{
    struct {
        char const* why;
        Box a, b;
        int64_t timeOfB;
        double overlap;
        char const* want;
    } const cases[] = {
        {"equal, of two the smaller id stays", {0, 0, 10, 10}, {0, 0, 10, 10}, 0, 0.0, "3:3 "},
        {"equal at another time", {0, 0, 10, 10}, {0, 0, 10, 10}, 1, 0.0, "3:3 8:8 "},
        {"one inside of the other counts only with an overlap", {0, 0, 10, 10}, {2, 2, 4, 4}, 0, 0.0, "3:3 8:8 "},
        {"either may be the second: the larger id goes", {2, 2, 4, 4}, {0, 0, 10, 10}, 0, 0.99, "3:3 "},
        {"a half is not above a half", {0, 0, 10, 10}, {5, 0, 10, 10}, 0, 0.5, "3:3 8:8 "},
        {"a box without an area", {0, 0, 10, 10}, {5, 5, 0, 0}, 0, 0.1, "3:3 8:8 "},
    };
    for (auto const& c : cases) {
        ObjectMap map;
        add(map, 3, c.a, 0);
        add(map, 8, c.b, c.timeOfB);
        map.try_emplace(9, "Moving", rktl::ElapsedTime(15000)); // without a path it is nobody's duplicate
        map.removeDuplicates(c.overlap);
        EXPECT_EQ(c.want + std::string("9:0 "), idsOf(map)) << c.why;
    }
}
