#include <gtest/gtest.h>

#include "image/rkil_MultiImage.h"
#include "misc/rktl_Double.h"
#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/ObjectTakenSpy.h"

#include <functional>
#include <limits>

namespace {

using Region = rkml::Polygon2D<float>;

/// A picture of 128 x 96 pixels.
struct Picture {
    explicit Picture(
        unsigned int channels, std::function<unsigned char(unsigned int x, unsigned int y, unsigned int channel)> value)
        : bytes(size_t(128) * 96 * channels)
        , image{bytes.data(), 128, 96, channels, static_cast<uint32_t>(bytes.size())}
    {
        for (unsigned int i = 0; i < bytes.size(); ++i)
            bytes[i] = value(i / channels % 128, i / channels / 128, i % channels);
    }

    std::vector<unsigned char> bytes;
    rk_image image;
};

// Stripes of 8 pixels: the asset, and another thing of the same values whose edges all run the other way.
Picture const asset(1, [](unsigned int x, unsigned int, unsigned int) -> unsigned char { return x / 8 % 2 ? 200 : 50; });
Picture const other(1, [](unsigned int, unsigned int y, unsigned int) -> unsigned char { return y / 8 % 2 ? 200 : 50; });
Region const square({{16, 16}, {80, 16}, {80, 80}, {16, 80}}); // 4 x 4 cells of 16 pixels

/// The results for pictures at 100, 200, ... ms.
std::string lookAt(ObjectTaken& taken, std::vector<Picture const*> const& pictures, float* confidence = nullptr)
{
    std::string results;
    float last = 0.0f;
    for (size_t i = 0; i < pictures.size(); ++i)
        results += std::to_string(taken.process(rktl::ElapsedTime(100 + 100 * int64_t(i)), pictures[i]->image, last));
    if (confidence)
        *confidence = last;
    return results;
}

std::vector<Picture const*> times(size_t count, Picture const& picture)
{
    return std::vector<Picture const*>(count, &picture);
}

/// An asset of a region that has been learned.
ObjectTaken learned(Region const& region, float sensitivity = 0.5f)
{
    ObjectTaken taken;
    taken.setRegion(region);
    taken.setSensitivity(sensitivity);
    EXPECT_EQ("111111111111", lookAt(taken, times(12, asset)));
    return taken;
}

struct TakenRun : SpyRun<ObjectTakenSpy> {
    TakenRun()
    {
        scene.resize(128, 96);
        spy.setRegion(square);
    }

    char show(
        Picture const& picture, std::function<void()> const& prepare = [] {})
    {
        return see([&] {
            scene.frame.setImage("Native Image", picture.image, rkil::MultiImage::flatGray);
            prepare();
        });
    }
    std::string show(std::vector<Picture const*> const& pictures)
    {
        std::string alarms;
        for (Picture const* const picture : pictures)
            alarms += show(*picture);
        return alarms;
    }
};

} // namespace

// The values are the same, so they count 0.3; of the edges' shares, each all in one bin, none is.
TEST(ObjectTaken, ChangedAndBackAgain)
{
    ObjectTaken taken;
    taken.setRegion(square);
    EXPECT_EQ("111111111111", lookAt(taken, times(12, asset)));
    float confidence = 0.0f;
    EXPECT_EQ("2", lookAt(taken, {&other}, &confidence));
    EXPECT_EQ(1.0f - 0.3f, confidence);
    EXPECT_EQ("Confidences:  Edge 0.000000, Value 1.000000", taken.getMessage());
    EXPECT_EQ(std::string(30, '2'), lookAt(taken, times(30, other))) << "what does not look like the asset is not learned";
    EXPECT_EQ("3", lookAt(taken, {&asset}, &confidence));
    EXPECT_EQ(1.0f, confidence);
    EXPECT_EQ("111112", lookAt(taken, {&asset, &asset, &asset, &asset, &asset, &other})) << "all is learned anew";
}

// While a cell is new each picture makes a tenth of it: the edges' similarity is 0, 0.1, 0.19, 0.271, then 0.3439, with which
// the score of 0.3 + 0.7 * 0.3439 = 0.54 passes 0.5. At 0.8 and below the change is not over.
TEST(ObjectTaken, NewCellsLearnFromAnything)
{
    ObjectTaken taken;
    taken.setRegion(square);
    EXPECT_EQ("122221111", lookAt(taken, {&asset, &other, &other, &other, &other, &other, &other, &other, &other}));
    // 1 - 0.9 ^ 8 = 0.57 of the edges are the other's now, and 0.43 * 0.7 + 0.3 = 0.6.
    EXPECT_EQ("1", lookAt(taken, {&asset}));
}

TEST(ObjectTaken, SensitivityIsTheLeastScore)
{
    float const score = 1.0f * 0.3f + 0.0f * 0.7f;
    ObjectTaken exact = learned(square, score), above = learned(square, std::nextafter(score, 1.0f));
    EXPECT_EQ("1", lookAt(exact, {&other}));
    EXPECT_EQ("2", lookAt(above, {&other}));
}

TEST(ObjectTaken, RegionsAndPicturesOfEveryKind)
{
    float const inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        Region region;
        char const* results; // for the asset three times, then the other thing
    } const cases[] = {
        {"one cell", Region({{16, 16}, {32, 16}, {32, 32}, {16, 32}}), "1112"},
        {"reaching out of the frame", Region({{-100, -100}, {80, -100}, {80, 80}, {-100, 80}}), "1112"},
        {"all there is", Region({{-inf, -inf}, {inf, -inf}, {inf, inf}, {-inf, inf}}), "1112"},
        {"outside of the frame", Region({{200, 16}, {280, 16}, {280, 80}, {200, 80}}), "2222"},
        {"a line", Region({{16, 16}, {80, 80}}), "0000"},
    };
    for (auto const& c : cases) {
        ObjectTaken taken;
        taken.setRegion(c.region);
        EXPECT_EQ(c.results, lookAt(taken, {&asset, &asset, &asset, &other})) << c.why;
    }
    ObjectTaken taken = learned(square);
    float confidence = 9.0f;
    EXPECT_EQ(ObjectTaken::failed, taken.process(rktl::ElapsedTime(1), rk_image{}, confidence));
    EXPECT_EQ("Invalid image", taken.getMessage());
    EXPECT_EQ(0.0f, confidence);
    Picture const colour(4, [](unsigned int x, unsigned int, unsigned int) -> unsigned char { return x & 255; });
    EXPECT_EQ(ObjectTaken::failed, taken.process(rktl::ElapsedTime(1), colour.image, confidence));
    EXPECT_THROW(taken.process(rktl::ElapsedTime(1), asset.image, colour.image, confidence), rktl::Exception)
        << "after gray ones";
}

TEST(ObjectTakenSpy, OneEventForAChange)
{
    TakenRun run;
    EXPECT_EQ("............", run.show(times(12, asset)));
    EXPECT_EQ('A', run.show(other));
    uint32_t const uid = run.events.front().getUID();
    EXPECT_EQ(70, run.events.front().getConfidence());
    EXPECT_EQ("AA", run.show(times(2, other)));
    EXPECT_EQ(uid, run.events.front().getUID());
    EXPECT_EQ("............", run.show(times(12, asset))) << "back without a word";
    EXPECT_EQ('A', run.show(other));
    EXPECT_NE(uid, run.events.front().getUID());
}

TEST(ObjectTakenSpy, AnObjectOnTheAssetHoldsItBack)
{
    rkml::BoundingBox<int> const touching(79, 10, 10, 10), beside(80, 10, 10, 10);
    struct {
        char const* why;
        rkml::BoundingBox<int> box;
        int32_t state;
        char const* type;
        char alarm;
    } const cases[] = {
        {"a pixel of it", touching, 3, "Moving", '.'},
        {"in limbo", touching, 2, "Moving", 'A'},
        {"static", touching, 3, "Static", 'A'},
        {"beside it", beside, 3, "Moving", 'A'},
    };
    for (auto const& c : cases) {
        TakenRun run;
        run.show(times(12, asset));
        char const alarm = run.show(other, [&] {
            Object& object = run.scene.put(7, c.box);
            object.setState(c.state);
            object.setType(c.type);
        });
        EXPECT_EQ(c.alarm, alarm) << c.why;
    }
}

TEST(ObjectTakenSpy, PausesHoldItBack)
{
    for (uint32_t flag : {4u, 512u, 1u}) {
        TakenRun run;
        run.show(times(12, asset));
        std::string alarms(1, run.show(other, [&] { run.scene.frame.setFlags(flag); }));
        run.scene.frame.setFlags(0);
        EXPECT_EQ(flag == 1 ? "AAAAAAAAAAA" : "..........A", alarms + run.show(times(10, other))) << flag; // 2000 ms
    }
}

TEST(ObjectTakenSpy, FormsKeepTheAsset)
{
    ObjectTakenSpy spy;
    spy.setSensitivity(0.25f);
    spy.setRegion(Region({{0.5f, 0}, {1, 0}, {1, 0.25f}}));
    spy.setReplaceAlarm(true);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><sensitivity>0.25</sensitivity><region><vertex x=\"0.5\" y=\"0\" /><vertex x=\"1\" y=\"0\" />"
              "<vertex x=\"1\" y=\"0.25\" /></region><replace-alarm/></ObjectTakenSpy>",
        xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << rktl::Double(0.25) << spy.getAsset().getRegion() << rktl::Integer(1);
    expectBinaryTail(spy, form);
}
