#include <gtest/gtest.h>

#include "image/rkil_MultiImage.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_Logger.h"
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
    for (float refused : {-0.1f, 1.1f, std::nanf("")})
        EXPECT_FALSE(exact.setSensitivity(refused));
    EXPECT_EQ(score, exact.getSensitivity());
}

// Gray does not change. Of the three colours one moves to another bin: a third of the shares; or two change places: two thirds.
TEST(ObjectTaken, ColourHasBinsOfItsOwn)
{
    using Value = std::function<unsigned char(unsigned int, unsigned int, unsigned int)>;
    auto const even = [](unsigned char blue, unsigned char green, unsigned char red) -> Value {
        return [=](unsigned int, unsigned int, unsigned int channel) -> unsigned char {
            unsigned char const bytes[] = {blue, green, red, 77};
            return bytes[channel];
        };
    };
    struct {
        char const* why;
        Value value;
        double distance;
    } const cases[] = {
        {"the same", even(95, 100, 150), 0.0}, // bins 5, 6 and 9
        {"the same bins", even(80, 111, 159), 0.0},
        {"red moves", even(95, 100, 160), 1.0 / 3},
        {"blue and red change places", even(150, 100, 95), 2.0 / 3},
        {"outside of the outline",
            [&](unsigned int x, unsigned int y, unsigned int channel) -> unsigned char {
                return x + y <= 96 ? even(95, 100, 150)(x, y, channel) : 255;
            },
            0.0},
    };
    Picture const colours(4, even(95, 100, 150));
    for (auto const& c : cases) {
        Picture const changed(4, c.value);
        ObjectTaken taken;
        taken.setSensitivity(1.0f);
        taken.setRegion(Region({{16, 16}, {80, 16}, {16, 80}})); // up to x + y = 96
        float confidence = 0.0f;
        taken.process(rktl::ElapsedTime(1), asset.image, colours.image, confidence);
        // Three of the 16 cells lie beyond the slope: they hold no values, and count -1 each.
        EXPECT_EQ(ObjectTaken::changed, taken.process(rktl::ElapsedTime(2), asset.image, changed.image, confidence)) << c.why;
        EXPECT_NEAR(0.3 * (1 - (13 * (1 - c.distance) - 3) / 16), confidence, 1e-6) << c.why;
    }
}

TEST(ObjectTaken, RegionsAndPicturesOfEveryKind)
{
    float const inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        Region region;
        char const* results; // for the asset three times, then the other thing
    } const cases[] = {
        {"a column too narrow for a cell", Region({{16, 16}, {31, 16}, {31, 80}, {16, 80}}), "2222"},
        {"one cell", Region({{16, 16}, {32, 16}, {32, 32}, {16, 32}}), "1112"},
        {"reaching out of the frame", Region({{-100, -100}, {80, -100}, {80, 80}, {-100, 80}}), "1112"},
        {"all there is", Region({{-inf, -inf}, {inf, -inf}, {inf, inf}, {-inf, inf}}), "1112"},
        {"outside of the frame", Region({{200, 16}, {280, 16}, {280, 80}, {200, 80}}), "2222"},
        {"left of the frame", Region({{-80, 16}, {-16, 16}, {-16, 80}, {-80, 80}}), "2222"},
        {"a line", Region({{16, 16}, {80, 80}}), "0000"},
    };
    for (auto const& c : cases) {
        ObjectTaken taken;
        taken.setRegion(c.region);
        EXPECT_EQ(c.results, lookAt(taken, {&asset, &asset, &asset, &other})) << c.why;
        EXPECT_EQ(c.results[0] == '0' ? "Invalid asset region" : "Confidences:",
            taken.getMessage().substr(0, c.results[0] == '0' ? 20 : 12));
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

    // A smaller picture: the outline is laid out anew, and nothing is known of it.
    rk_image const upperHalf = {const_cast<unsigned char*>(asset.image.data), 128, 48, 1, 128 * 48};
    EXPECT_EQ(ObjectTaken::nothing, taken.process(rktl::ElapsedTime(1), upperHalf, confidence));
    EXPECT_EQ(1, taken.getMask().at(79, 47));
    EXPECT_EQ(0, taken.getMask().at(79, 48));
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

    run.spy.setReplaceAlarm(true);
    EXPECT_EQ("A.", run.show(times(2, asset)));
    TakenRun told;
    told.spy.setReplaceAlarm(true);
    told.show(times(12, asset));
    EXPECT_EQ("AA", told.show({&other, &asset}));
    EXPECT_EQ("Replaced", told.events.front().getSubtitle());
    EXPECT_EQ(100, told.events.front().getConfidence());
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
        {"unmatched", touching, 5, "Moving", '.'},
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
    // Nothing is learned meanwhile: the first pictures are of an object on the asset.
    TakenRun run;
    for (int i = 0; i < 12; ++i)
        run.show(other, [&] { run.scene.put(7, touching); });
    run.scene.frame.getObjects().clear();
    EXPECT_EQ("............", run.show(times(12, asset)));
    EXPECT_EQ('A', run.show(other));
}

TEST(ObjectTakenSpy, PausesFrameSizesAndMissingPictures)
{
    for (uint32_t flag : {4u, 512u, 1u}) {
        TakenRun run;
        run.show(times(12, asset));
        std::string alarms(1, run.show(other, [&] { run.scene.frame.setFlags(flag); }));
        run.scene.frame.setFlags(0);
        EXPECT_EQ(flag == 1 ? "AAAAAAAAAAA" : "..........A", alarms + run.show(times(10, other))) << flag; // 2000 ms
    }

    TakenRun resized;
    resized.show(times(12, asset));
    resized.show(other);
    uint32_t const uid = resized.events.front().getUID();
    resized.scene.resize(128, 95);
    EXPECT_EQ("...........", resized.show(times(11, asset)));
    EXPECT_EQ('A', resized.show(other));
    EXPECT_EQ(uid, resized.events.front().getUID()) << "the event goes on";

    TakenRun blind;
    EXPECT_EQ('.', blind.see([] {}));
    blind.spy.setRegion(Region());
    EXPECT_EQ("..", blind.show({&asset, &other}));
    rksl::StringMap<rktl::Integer> types;
    blind.spy.getRequiredImageTypes(types);
    EXPECT_EQ(3, types["Native Image"]);
}

TEST(ObjectTakenSpy, SaysWhenTheFrameDoesNotHoldTheAsset)
{
    class : public rktl::Logger {
    public:
        using Logger::Logger;
        std::string lines;

    protected:
        rktl::String format(rktl::LogType const&, rktl::String const& text) override { return lines += text; }
        bool output(rktl::LogType const&, rktl::String const&) override { return true; }
    } logger("");
    ASSERT_TRUE(logger.start());
    ObjectTakenSpy spy;
    spy.setName("case");
    spy.setLogger(&logger);
    spy.setRegion(Region({{0, 0}, {100, 0}, {100, 100}, {0, 15}}));
    spy.reserveFrameSize(0, 96);
    spy.reserveFrameSize(128, 96);
    EXPECT_EQ("", logger.lines);
    spy.reserveFrameSize(128, 16);
    EXPECT_EQ("case: the asset is smaller than 16x16 pixels in a frame of 128x16: it counts as changed\n", logger.lines);
    logger.lines.clear();
    spy.setRegion(Region({{129, 0}, {300, 0}, {300, 96}}));
    spy.reserveFrameSize(128, 96);
    EXPECT_EQ("case: the asset is smaller than 16x16 pixels in a frame of 128x96: it counts as changed\n"
              "case: its asset lies outside of the frame of 128x96\n",
        logger.lines);
    logger.stop(rktl::ElapsedTime(5000));
}

TEST(ObjectTakenSpy, FormsKeepTheAsset)
{
    ObjectTakenSpy spy;
    expectBothFormsSurvive(spy);
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

    ObjectTakenSpy read;
    ASSERT_TRUE(read.fromXML("<x><replace-alarm>false</replace-alarm><sensitivity>1e300</sensitivity></x>"));
    EXPECT_TRUE(read.getReplaceAlarm()) << "its presence counts";
    EXPECT_EQ(0.5f, read.getAsset().getSensitivity());
    std::vector<rktl::String> faults;
    read.findFaults(faults);
    EXPECT_EQ(std::vector<rktl::String>{"region has 0 points, it needs 3"}, faults);
}
