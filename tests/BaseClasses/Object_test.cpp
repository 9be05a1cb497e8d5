#include <gtest/gtest.h>

#include "BaseClasses/Object.h"
#include "support/bytes.h"

#include <climits>

using Box = rkml::BoundingBox<int>;

namespace {

rktl::TimeStamp at(int64_t milliseconds)
{
    return rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'000'000'000'000 + milliseconds));
}

rksl::List<rktl::Integer> ids(std::initializer_list<int> values)
{
    rksl::List<rktl::Integer> list;
    for (int const value : values)
        list.push_back(value);
    return list;
}

/// The boxes of a path as "x,y widthxheight (merges)@milliseconds ".
std::string pathOf(Object const& object)
{
    std::string text;
    for (auto const& [time, node] : object.getTrack())
        text += std::to_string(node.mBox.x) + "," + std::to_string(node.mBox.y) + " " + std::to_string(node.mBox.width) + "x" +
            std::to_string(node.mBox.height) + " (" + std::to_string(node.mMerges.size()) + ")@" +
            std::to_string((time - at(0)).toMilliseconds()) + " ";
    return text;
}

rkml::ColorHistogram colours(std::initializer_list<std::pair<uint32_t, uint32_t>> bins)
{
    rkml::ColorHistogram histogram;
    for (auto const& [bin, count] : bins)
        histogram.incrementBin(bin, count);
    return histogram;
}

Object walker()
{
    Object object("Moving", rktl::ElapsedTime(15000));
    object.setId(7);
    object.insert({1, 2, 3, 4}, {}, at(0));
    object.insert({2, 2, 3, 4}, ids({5, 9}), at(40));
    return object;
}

} // namespace

TEST(Object, IsBornWithItsFirstNodeAndForgetsWhatLeavesTheWindow)
{
    Object object("Static", rktl::ElapsedTime(1000));
    EXPECT_EQ(1u, object.insert({5, 5, 0, 8}, {}, at(0)));

    EXPECT_EQ(2u, object.insert({6, 5, 4, 8}, ids({3}), at(600)));
    EXPECT_TRUE(object.getFirstBox() == Box(6, 5, 4, 8)) << "the first one of a positive size";
    EXPECT_EQ(2u, object.insert({7, 5, 4, 8}, ids({3, 4}), at(1001)));
    EXPECT_EQ(1001, object.age().toMilliseconds()) << "counted from first seen, not from the oldest node";

    Object const copy(object);
    EXPECT_TRUE(object.updateNewest({8, 8, 8, 8}));
    object.clearTail();
    EXPECT_EQ("8,8 8x8 (2)@1001 ", pathOf(object));
    EXPECT_EQ("6,5 4x8 (1)@600 7,5 4x8 (2)@1001 ", pathOf(copy)) << "a copy keeps its own path";
}

TEST(Object, AnswersForItsClasses)
{
    Object object;
    object.setClassConfidence("Human", 0.5);
    object.setClassConfidence("walking", 0.25);
    EXPECT_EQ(0.5, object.getClassConfidence("HUMAN,vehicle"));
    EXPECT_EQ(0.125, object.getClassConfidence("walking,human"));
    EXPECT_EQ(-1.0, object.getClassConfidence(",,"));
}

TEST(Object, ShowsItsColours)
{
    Object a, b;
    // Bin 7 is full red, 56 full green, 448 full blue, each at the centre of its cell.
    a.setHistogram(colours({{7, 10}, {56, 30}, {448, 20}, {0, 5}, {511, 4}, {1, 1}}));
    EXPECT_EQ("#10f010|#1010f0|#f01010|#101010|#f0f0f0", a.getAttribute("Color Palette"));
    b.setHistogram(colours({{7, 10}}));
    EXPECT_FLOAT_EQ(1.0f - 60.0f / 70.0f, static_cast<float>(a.compareHistogram(b))); // they share 10 of 70
}

TEST(Object, ContinuesAnEarlierOne)
{
    Object early, late;
    early.insert({1, 1, 5, 5}, {}, at(0));
    early.insert({2, 2, 5, 5}, {}, at(40));
    early.setHistogram(colours({{7, 2}}));
    late.insert({9, 9, 5, 5}, {}, at(1000));
    late.setHistogram(colours({{7, 1}}));
    Object merged(late);
    merged.mergeTrack(early);
    EXPECT_EQ("1,1 5x5 (0)@0 2,2 5x5 (0)@40 9,9 5x5 (0)@1000 ", pathOf(merged));
    EXPECT_TRUE(merged.getFirstSeen() == at(0) && merged.getFirstBox() == Box(1, 1, 5, 5));
    EXPECT_EQ(3u, merged.getHistogram().getBinValue(7));
}

TEST(Object, FollowsAnother)
{
    Object source = walker(), follower("Other", rktl::ElapsedTime(15000));
    source.setAttribute("GUID", "g");
    source.setHistogram(colours({{7, 2}}));
    follower.update(source);
    EXPECT_EQ("2,2 3x4 (2)@40 ", pathOf(follower));
    follower.update(source);
    EXPECT_EQ(1u, follower.getTrack().size()) << "the same moment adds no node";
    source.insert({3, 2, 3, 4}, {}, at(80));
    follower.update(source);
    EXPECT_EQ("2,2 3x4 (2)@40 3,2 3x4 (0)@80 ", pathOf(follower));
    EXPECT_EQ("g", follower.getAttribute("GUID"));
    EXPECT_TRUE(follower.getFirstSeen() == at(0) && follower.getFirstBox() == Box(1, 2, 3, 4));
    EXPECT_EQ(0u, follower.getHistogram().getTotal()) << "the histogram stays";
    source.setFullTrack(true);
    follower.update(source);
    EXPECT_EQ(pathOf(source), pathOf(follower));
}

TEST(Object, ScalesItsBoxes)
{
    Object object = walker();
    object.insert({-1, 1000000000, 3, 5}, {}, at(80));
    object.setClassRegion("human", {1, 1, 1, 3});
    object.setEstimatedPosition({4, 4, 4, 4});
    object.scale(2.5); // 2.5, 5, 7.5, 10; halves away from 0
    EXPECT_EQ("3,5 8x10 (0)@0 5,5 8x10 (2)@40 -3,2147483647 8x13 (0)@80 ", pathOf(object));
    EXPECT_TRUE(object.getFirstBox() == Box(3, 5, 8, 10));
    EXPECT_TRUE(object.getClassRegion("human") == Box(3, 3, 3, 8));
    EXPECT_TRUE(object.getEstimatedPosition() == Box(4, 4, 4, 4));
}

TEST(Object, BinaryFormCarriesTheNewestNodeOrTheWholePath)
{
    struct {
        char const* why;
        char const* type;
        bool full;
        size_t nodes, wantRead;
    } const cases[] = {
        {"newest alone", "Moving", false, 3, 1},
        {"whole path", "Moving", true, 3, 3},
        {"never the path of a static one", "Static", true, 3, 1},
        {"nothing: one default node stands for the path", "Moving", false, 0, 1},
        {"an empty path in full", "Moving", true, 0, 0},
    };
    for (auto const& c : cases) {
        Object object(c.type, rktl::ElapsedTime(60000)), read("Static", rktl::ElapsedTime(1000));
        for (size_t i = 0; i < c.nodes; ++i)
            object.insert({int(i), 2, 3, 4}, ids({4}), at(int64_t(i) * 5000));
        object.setFullTrack(c.full);
        support::Bytes const bytes = support::toBin(object);
        EXPECT_EQ(bytes.size(), support::fromBin(read, bytes)) << c.why;
        EXPECT_EQ(c.wantRead, read.getTrack().size()) << c.why;
        EXPECT_EQ(c.type, read.getType());
        // Reading makes the window as wide as the span of what is read: 10 s.
        EXPECT_EQ(c.full && c.nodes ? 10000 : 1000, read.getTrack().getWindow().toMilliseconds()) << c.why;
        if (c.full && c.wantRead == 3) {
            EXPECT_EQ(pathOf(object), pathOf(read));
            EXPECT_EQ(bytes, support::toBin(read));
        }
    }
}

TEST(Object, BinaryFormIsRefusedWholeOrTakenWhole)
{
    Object object = walker();
    object.setClassConfidence("human", 0.5);
    object.addClass("human");
    object.setClassRegion("human", {1, 2, 3, 4});
    object.setAttribute("GUID", "g");
    object.setHistogram(colours({{7, 2}}));
    object.setState(-1);
    support::Bytes const bytes = support::toBin(object);
    // id, not the full path, a stream of 8 + 8 span, then time, box and merges; the span of 40 ms is the first frame's body.
    EXPECT_EQ(support::hex("07000000 00"), support::Bytes(bytes.begin(), bytes.begin() + 5));
    EXPECT_EQ(support::hex("28000000 00000000"), support::Bytes(bytes.begin() + 17, bytes.begin() + 25));
    support::expectEveryPrefixThrows<Object>(bytes);

    Object kept = walker();
    kept.setAttribute("mine", "yes");
    support::Bytes const before = support::toBin(kept);
    support::Bytes broken(bytes.begin(), bytes.end() - 1);
    EXPECT_THROW(support::fromBin(kept, broken), rktl::Exception);
    EXPECT_EQ(before, support::toBin(kept));
    support::fromBin(kept, bytes);
    EXPECT_EQ("", kept.getAttribute("mine")) << "entries replace what was there";
    EXPECT_EQ(bytes, support::toBin(kept));
}
