#include <gtest/gtest.h>

#include "BaseClasses/MovingObjectParams.h"

namespace {

/// All fields, one after the other, with a blank between.
std::string fieldsOf(MovingObjectParams const& params)
{
    std::ostringstream text;
    text << params.mMotionSensitivity.value << ' ' << params.mSensitivity.value << ' ' << params.mCsThresh.value << ' '
         << params.mImageQLen.value << ' ' << params.mSkippedFrames.value << ' ' << params.mObjectFilterWidth.value << ' '
         << params.mObjectFilterHeight.value << ' ' << params.mGradientMultiplier.value << ' ' << params.mKernelType.value << ' '
         << params.mKernelWidth.value << ' ' << params.mKernelHeight.value << ' ' << params.mExclusionZones.size() << ' '
         << params.mShadowRemoval.value << ' ' << params.mFilterNoiseLevel.value << ' ' << params.mColumns.value << ' '
         << params.mRows.value;
    return text.str();
}

constexpr char const* defaults = "0.5 0.5 -1 3 4 11 11 1 1 11 11 0 0 4 2 2";

MovingObjectParams unusual()
{
    MovingObjectParams params;
    params.mMotionSensitivity = 0.25;
    params.mSensitivity = 0.75;
    params.mCsThresh = 0.125;
    params.mImageQLen = 5;
    params.mSkippedFrames = 6;
    params.mObjectFilterWidth = 7;
    params.mObjectFilterHeight = 8;
    params.mGradientMultiplier = 1.5;
    params.mKernelType = MovingObjectParams::square;
    params.mKernelWidth = 9;
    params.mKernelHeight = 10;
    params.mExclusionZones.push_back(rkml::Polygon2D<float>({{0.0f, 0.0f}, {0.5f, 0.0f}, {0.5f, 0.25f}}));
    params.mShadowRemoval = 1;
    params.mFilterNoiseLevel = MovingObjectParams::low;
    params.mColumns = 3;
    params.mRows = 4;
    return params;
}

constexpr char const* unusualFields = "0.25 0.75 0.125 5 6 7 8 1.5 0 9 10 1 1 1 3 4";

} // namespace

TEST(MovingObjectParams, DefaultsAsXml)
{
    MovingObjectParams const params;
    EXPECT_EQ("<motion-sensitivity>0.5</motion-sensitivity>\n"
              "<sensitivity>0.5</sensitivity>\n"
              "<cs-thresh>-1</cs-thresh>\n"
              "<image-q-len>3</image-q-len>\n"
              "<skipped-frames>4</skipped-frames>\n"
              "<kernel type=\"Ellipse\">\n  <width>11</width>\n  <height>11</height>\n</kernel>\n"
              "<object-filter>\n  <width>11</width>\n  <height>11</height>\n</object-filter>\n"
              "<filter-noise level=\"auto\">\n  <columns>2</columns>\n  <rows>2</rows>\n</filter-noise>\n",
        params.xmlSerialize());
}

TEST(MovingObjectParams, KeepsEveryFieldInBothForms)
{
    MovingObjectParams const original = unusual();
    ASSERT_EQ(unusualFields, fieldsOf(original));
    MovingObjectParams fromXml;
    ASSERT_TRUE(fromXml.xmlUnserialize(original.xmlSerialize()));
    EXPECT_EQ(unusualFields, fieldsOf(fromXml));
    EXPECT_EQ(original.mExclusionZones.front(), fromXml.mExclusionZones.front());
    MovingObjectParams fromBinary;
    ASSERT_TRUE(fromBinary.binUnserialize(original.binSerialize()));
    EXPECT_EQ(unusualFields, fieldsOf(fromBinary));
    EXPECT_EQ(original.mExclusionZones.front(), fromBinary.mExclusionZones.front());

    MovingObjectParams back = original;
    ASSERT_TRUE(back.xmlUnserialize(MovingObjectParams().xmlSerialize()));
    EXPECT_EQ(defaults, fieldsOf(back)) << "zones, multiplier and shadows are not in the text, and go back";

    MovingObjectParams flag;
    flag.mShadowRemoval = 7;
    ASSERT_TRUE(fromBinary.binUnserialize(flag.binSerialize()));
    EXPECT_EQ(1, fromBinary.mShadowRemoval.value) << "anything but 0 is set";
}

TEST(MovingObjectParams, ReadsWhatOldAndSloppyTextsSay)
{
    struct {
        char const* xml;
        char const* fields;
    } const cases[] = {
        {"<threshold>23</threshold>", "0.8 0.5 -1 3 4 11 11 1 1 11 11 0 0 4 2 2"},      // 13 / -65 + 1
        {"<min-bg-pct>0.4</min-bg-pct>", "0.5 0 -1 3 4 11 11 1 1 11 11 0 0 4 2 2"},     // below a half
        {"<min-bg-pct>0.95</min-bg-pct>", "0.5 0.75 -1 3 4 11 11 1 1 11 11 0 0 4 2 2"}, // 0.05 / 0.2 + 0.5
        {"<kernel type=\"ellipse\"><width>3</width></kernel>", "0.5 0.5 -1 3 4 11 11 1 0 3 11 0 0 4 2 2"},
        {"<shadow-removal/><other/>", "0.5 0.5 -1 3 4 11 11 1 1 11 11 0 1 4 2 2"},
        {"<filter-noise level=\"Medium\"><columns>0</columns><rows>5</rows></filter-noise>",
            "0.5 0.5 -1 3 4 11 11 1 1 11 11 0 0 2 2 5"},
        {"<filter-noise level=\"loud\"><rows>-1</rows></filter-noise>", "0.5 0.5 -1 3 4 11 11 1 1 11 11 0 0 0 2 2"},
    };
    for (auto const& c : cases) {
        MovingObjectParams params;
        EXPECT_TRUE(params.xmlUnserialize(c.xml)) << c.xml;
        EXPECT_EQ(c.fields, fieldsOf(params)) << c.xml;
    }
    MovingObjectParams params = unusual();
    for (char const* broken : {"", "<kernel>", "</TempTag>"}) {
        EXPECT_FALSE(params.xmlUnserialize(broken)) << broken;
        EXPECT_EQ(unusualFields, fieldsOf(params)) << broken;
    }
}
