#include "camera/sources/Y4mSource.h"
#include "camera/sources/Y4mWriter.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace camera;

namespace {

Y4mSource sourceOf(std::string const& bytes, std::optional<FrameRate> rate = std::nullopt)
{
    return Y4mSource(std::make_unique<std::istringstream>(bytes), "test", rate);
}

std::string bytes(std::initializer_list<int> values)
{
    return std::string(values.begin(), values.end());
}

std::vector<int> pictureOf(FrameSource& source)
{
    Picture picture;
    source.picture(picture);
    return {picture.bytes.begin(), picture.bytes.end()};
}

} // namespace

TEST(Y4mSource, EveryChromaFormatBecomesOnePairABlock)
{
    std::string const luma3x3 = bytes({1, 2, 3, 4, 5, 6, 7, 8, 9});
    struct {
        char const* format;
        std::string chroma;
        std::vector<int> pairs;
    } const cases[] = {
        {"", bytes({10, 20, 30, 40}) + bytes({50, 60, 70, 80}), {10, 50, 20, 60, 30, 70, 40, 80}},
        {" C420jpeg", bytes({10, 20, 30, 40}) + bytes({50, 60, 70, 80}), {10, 50, 20, 60, 30, 70, 40, 80}},
        // (10 + 15) / 2 = 12.5 and (2 + 4) / 2; the last row stands alone.
        {" C422", bytes({10, 20, 15, 40, 7, 9}) + bytes({1, 2, 3, 4, 5, 6}), {13, 2, 30, 3, 7, 5, 9, 6}},
        // Upper left (10 + 20 + 40 + 50) / 4 = 30; right (30 + 61) / 2 = 45.5; below (70 + 80) / 2 = 75; corner 90.
        {" C444", bytes({10, 20, 30, 40, 50, 61, 70, 80, 90}) + bytes({4, 4, 4, 4, 4, 4, 4, 4, 4}), {30, 4, 46, 4, 75, 4, 90, 4}},
        {" Cmono", "", {128, 128, 128, 128, 128, 128, 128, 128}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.format);
        Y4mSource source = sourceOf(std::string("YUV4MPEG2 W3 H3 F25:1") + c.format + "\nFRAME Ip\n" + luma3x3 + c.chroma);
        ASSERT_TRUE(source.advance());
        std::vector<int> expected = {1, 2, 3, 4, 5, 6, 7, 8, 9};
        expected.insert(expected.end(), c.pairs.begin(), c.pairs.end());
        EXPECT_EQ(expected, pictureOf(source));
        EXPECT_FALSE(source.advance());
    }
}

TEST(Y4mSource, TimesFollowTheRateOfTheHeaderUnlessAnotherIsGiven)
{
    auto thirdTime = [](std::string const& field, std::optional<FrameRate> rate = std::nullopt) {
        Y4mSource source = sourceOf("YUV4MPEG2 W1 H1 Cmono" + field + "\nFRAME\n1FRAME\n2FRAME\n3", rate);
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(source.advance());
        return source.time();
    };
    EXPECT_EQ(80, thirdTime(" F25:1"));
    EXPECT_EQ(66, thirdTime(" F30000:1001")); // 66.73 rounded down
    EXPECT_EQ(80, thirdTime(" F0:0"));        // unknown: 25
    EXPECT_EQ(200, thirdTime(" F25:1", FrameRate{10, 1}));
}

TEST(Y4mSource, BadStreamsAreRefusedWithTheirReason)
{
    struct {
        std::string stream;
        char const* reason;
    } const cases[] = {
        {"", "ends in the line"},
        {"YUV4MPEG2X W1 H1\n", "no Y4M stream"},
        {"YUV4MPEG2 W99999999999 H1\n", "bad width"},
        {"YUV4MPEG2 W4097 H4096\n", "too large"},
        {"YUV4MPEG2 W1 H1 F25:0\n", "frame rate"},
        {"YUV4MPEG2 W1 H1 C420p10\n", "pixel format"},
        {"YUV4MPEG2 W1 H1 X" + std::string(5000, 'x') + "\n", "too long"},
        {"YUV4MPEG2 W1 H1 Cmono\nFRAMES\n1", "no FRAME line"},
        {"YUV4MPEG2 W1 H1 Cmono\nFRAME " + std::string(300, 'x') + "\n1", "too long"},
        {"YUV4MPEG2 W4096 H4096\nFRAME\nfew bytes", "ends in the middle of frame 0"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.reason);
        try {
            Y4mSource source = sourceOf(c.stream);
            source.advance();
            ADD_FAILURE() << "accepted " << c.stream.substr(0, 60);
        } catch (SourceError const& error) {
            EXPECT_NE(std::string::npos, std::string(error.what()).find(c.reason)) << error.what();
        }
    }
}

TEST(Y4mSource, WhereverAStreamIsCutOnlyWholeFramesComeAndTheCutIsTold)
{
    Picture picture;
    picture.resize(5, 3);
    for (size_t i = 0; i < picture.bytes.size(); ++i)
        picture.bytes[i] = uint8_t(i * 7);
    std::ostringstream out;
    Y4mWriter writer(out, 5, 3, {25, 1});
    size_t const header = out.str().size();
    writer.write(picture);
    writer.write(picture);
    std::string const whole = out.str();
    size_t const frame = (whole.size() - header) / 2;

    for (size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        size_t frames = 0;
        bool told = false;
        try {
            Y4mSource source = sourceOf(whole.substr(0, size));
            for (; source.advance(); ++frames) {
                Picture read;
                source.picture(read);
                ASSERT_EQ(picture, read);
            }
        } catch (SourceError const&) {
            told = true;
        }
        EXPECT_EQ(size < header ? 0 : (size - header) / frame, frames);
        EXPECT_EQ(size < header || (size - header) % frame != 0, told);
    }
}

TEST(FrameRate, ReadsFractionsAndDecimalsAndRefusesTheRest)
{
    EXPECT_EQ((FrameRate{25, 1}), FrameRate::parse("25"));
    EXPECT_EQ((FrameRate{12500, 1000}), FrameRate::parse("12.5"));
    EXPECT_EQ((FrameRate{30000, 1001}), FrameRate::parse("30000/1001"));
    EXPECT_EQ((FrameRate{1, 1000}), FrameRate::parse("1/1000"));
    for (char const* text :
        {"", "0", "-1", "25 ", "1001", "1/1001", "25/0", "0/1", "12.", ".", "1.2345", "1e3", "25/", "/1", "99999999999"})
        EXPECT_EQ(std::nullopt, FrameRate::parse(text)) << text;
}
