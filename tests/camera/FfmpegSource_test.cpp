#ifdef CONTRAFLOW_FFMPEG

#include "camera/sources/FrameSource.h"
#include "camera/sources/SceneSource.h"
#include "camera/sources/Y4mWriter.h"
#include "support/TempFolder.h"
#include "support/text_file.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace camera;

namespace {

/// A file whose name says nothing of its contents, so that openSource leaves it to FFmpeg.
class FfmpegSourceTest : public testing::Test {
protected:
    TempFolder const mFolder;
    std::string const mPath = mFolder / "some.video";
};

std::string gateVideo(uint32_t frames, FrameRate rate)
{
    std::ostringstream out;
    SceneSource scene("gate", rate);
    Y4mWriter writer(out, scene.width(), scene.height(), rate);
    Picture picture;
    for (uint32_t i = 0; i < frames && scene.advance(); ++i) {
        scene.picture(picture);
        writer.write(picture);
    }
    return out.str();
}

} // namespace

TEST_F(FfmpegSourceTest, GivesTheVideosOwnBytesAndTimes)
{
    put(mPath, gateVideo(5, {25, 2}));
    auto const source = openSource(mPath);
    SceneSource scene("gate", {25, 2});
    ASSERT_EQ(160u, source->width());
    ASSERT_EQ(120u, source->height());
    EXPECT_FALSE(source->live());
    Picture expected, picture;
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(source->advance());
        ASSERT_TRUE(scene.advance());
        EXPECT_EQ(80 * i, source->time());
        scene.picture(expected);
        source->picture(picture);
        ASSERT_TRUE(expected == picture) << "frame " << i;
    }
    EXPECT_FALSE(source->advance());
    EXPECT_FALSE(source->advance());
}

TEST_F(FfmpegSourceTest, RefusesWhatIsNoVideoWithItsName)
{
    put(mPath, "this is no video at all, but some text that goes on for a while\n");
    for (std::string const& path : {mPath, mPath + ".missing"}) {
        try {
            openSource(path);
            ADD_FAILURE() << "opened " << path;
        } catch (SourceError const& error) {
            EXPECT_EQ(0u, std::string(error.what()).find(path)) << error.what();
        }
    }
}

#endif
