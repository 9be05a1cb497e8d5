#include <gtest/gtest.h>

#include "BaseClasses/Frame.h"

namespace {

using rktl::String;

TEST(FrameMetadata, BoxesAreInPixelsOrNormalised)
{
    String text;
    Frame::createBBoxMetadata({1, -3, 5, 8}, 0, 100, text);
    EXPECT_EQ("<BoundingBox left=\"1\" top=\"-3\" right=\"6\" bottom=\"5\"/> <CenterOfGravity x=\"3\" y=\"1\"/>",
        text); // 1 + 5/2 = 3, -3 + 8/2 = 1
    // x: 0.25 of 40, wide 0.5; y: 0.1 of 100, high 0.2.
    Frame::createBBoxMetadata({10, 10, 20, 20}, 40, 100, text);
    EXPECT_EQ(
        "<BoundingBox left=\"-0.5\" top=\"-0.8\" right=\"0.5\" bottom=\"-0.4\"/> <CenterOfGravity x=\"0\" y=\"-0.6\"/>", text);
}

using rktl::String;

TEST(FrameMetadata, ClassesOutsideTheSchemaAreNamedInAnExtension)
{
    Object object;
    String text = "old";
    Frame::createClassXML(object, text);
    object.setClassConfidence("human", 0.5);
    object.setClassConfidence("dog", 0.25);
    Frame::createClassXML(object, text);
    EXPECT_EQ("<Class><ClassCandidate> <Type>Other</Type> <Likelihood>0.25</Likelihood> </ClassCandidate> "
              "<ClassCandidate> <Type>Human</Type> <Likelihood>0.5</Likelihood> </ClassCandidate> "
              "<Extension><OtherTypes><Type>dog</Type><Likelihood>0.25</Likelihood></OtherTypes></Extension></Class>",
        text);
}

TEST(FrameMetadata, AFrameIsOneLine)
{
    rktl::TimeStamp const time = rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(12007));
    ObjectMap objects;
    for (uint32_t id : {9u, 4u}) {
        Object object;
        object.setId(id);
        object.insert({1, 1, 8, 8}, {}, time);
        object.insert({0, 0, 2, 2}, {}, time); // the newest
        objects[static_cast<int32_t>(id)] = object;
    }
    objects[9].setClassConfidence("face", 1.0);
    String text = "old";
    Frame::createFrameMetadata(time, objects, 0, 0, text);
    String const shape = "<Appearance> <Shape><BoundingBox left=\"0\" top=\"0\" right=\"2\" bottom=\"2\"/> "
                         "<CenterOfGravity x=\"1\" y=\"1\"/></Shape> ";
    EXPECT_EQ("<Frame UtcTimeMsec=\"12007\"><Data><Object ObjectId=\"4\">" + shape +
            "</Appearance> </Object> <Object ObjectId=\"9\">" + shape +
            "<Class><ClassCandidate> <Type>Face</Type> <Likelihood>1</Likelihood> </ClassCandidate> </Class>"
            "</Appearance> </Object> </Data></Frame>",
        text);
    Frame::createFrameMetadata(rktl::TimeStamp(), {}, 4, 4, text);
    EXPECT_EQ("<Frame UtcTimeMsec=\"0000\"><Data></Data></Frame>", text);
    EXPECT_EQ("<Frame UtcTimeMsec=\"0\"><Data></Data></Frame>", Frame::createEmptyMetadata());
}

} // namespace
