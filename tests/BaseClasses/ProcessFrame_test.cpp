#include <gtest/gtest.h>

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_image.h"
#include "support/bytes.h"

namespace {

using rktl::String;

struct Pixels {
    rk_image image;
    Pixels(uint32_t width, uint32_t height, uint32_t channels) { rk_init_image(&image, width, height, channels); }
    ~Pixels() { rk_free_image(&image); }
    Pixels(Pixels const&) = delete;
    Pixels& operator=(Pixels const&) = delete;
};

constexpr char const* native = "Native Image";

String forms(ProcessFrame const& frame)
{
    String text;
    for (unsigned int form : {1u, 2u, 3u, 4u, ProcessFrame::gpuType})
        text += frame.isImageSet(native, form) ? '1' : '0';
    return text;
}

TEST(ProcessFrame, AnImageHasAllFormsAskedForOrIsNotSet)
{
    ProcessFrame frame;
    Pixels gray(4, 2, 1);
    EXPECT_EQ("00000", forms(frame));
    frame.setImage(native, gray.image, 2);
    EXPECT_EQ("01000", forms(frame));
    frame.addType(native, 1);
    EXPECT_EQ("11100", forms(frame));
    frame.setGPUImage(native, reinterpret_cast<rkgpu_image*>(&gray));
    EXPECT_EQ("11101", forms(frame));
    frame.unsetImage(native);
    EXPECT_EQ("00000", forms(frame));
    EXPECT_EQ(nullptr, frame.getGPUImage("other"));
    EXPECT_EQ("ProcessFrame::addType() - that image type is not set", support::messageOf([&] { frame.addType(native, 1); }));
    Pixels bgry(4, 2, 4);
    frame.setBGRY(native, bgry.image);
    EXPECT_EQ("11101", forms(frame));
    frame.clearImages();
    EXPECT_EQ("00000", forms(frame));
    EXPECT_EQ(nullptr, frame.getGPUImage(native));
}

TEST(ProcessFrame, ClearKeepsTheBufferForTheNextFrameButNotTheImage)
{
    ProcessFrame frame;
    Pixels gray(4, 2, 1);
    frame.setImage(native, gray.image, 2);
    unsigned char const* const buffer = frame.getMultiImage(native).getFlatGray().getImage()->data;
    frame.setEvents({{1, Event()}});
    frame.addUntracked({1, 2, 3, 4}, "Moving", 0.5f);
    frame.setFlags(4);
    frame.clear();
    EXPECT_EQ("00000", forms(frame));
    EXPECT_TRUE(frame.getEvents().empty());
    EXPECT_TRUE(frame.nameUntracked().empty());
    EXPECT_EQ(0u, frame.getFlags());
    frame.setImage(native, gray.image, 2);
    EXPECT_EQ(buffer, frame.getMultiImage(native).getFlatGray().getImage()->data);
}

TEST(ProcessFrame, SendsNoImageOfAnEarlierFrame)
{
    ProcessFrame frame;
    Pixels gray(4, 2, 1);
    rksl::Set<String> names;
    names.insert(native);
    frame.setImage(native, gray.image, 2);
    auto const sent = [&] {
        frame.setImageNames(names);
        Frame read;
        EXPECT_EQ(frame.getBinLength(), support::fromBin(read, support::toBin(frame)));
        return read.hasImage(native);
    };
    EXPECT_TRUE(sent());
    frame.clear();
    EXPECT_FALSE(sent());
}

/// A chain of regions at x = 1, 2, ... count.
rk_vertex* chain(uint32_t count)
{
    rk_vertex* head = nullptr;
    for (uint32_t x = count; x > 0; --x)
        head = new rk_vertex{x, 0, 0, 0, 0.0f, head};
    return head;
}

String columns(rk_vertex const* region)
{
    String text;
    for (; region; region = region->next)
        text += String::fromInteger(static_cast<int>(region->x));
    return text;
}

String regions(ProcessFrame const& frame, String const& name)
{
    unsigned int count = 99;
    String const text = columns(frame.getUntracked(name, count));
    return text + "/" + String::fromInteger(static_cast<int>(count));
}

TEST(ProcessFrame, SplicesRegionsAsOneBlock)
{
    ProcessFrame frame;
    rk_vertex* list = nullptr;
    frame.spliceUntracked(&list, "Moving", 2);
    frame.spliceUntracked(nullptr, "Moving", 2);
    list = chain(3);
    frame.spliceUntracked(&list, "Moving", 0);
    EXPECT_TRUE(frame.nameUntracked().empty());
    EXPECT_EQ("/0", regions(frame, "Moving"));

    frame.spliceUntracked(&list, "Moving", 2);
    EXPECT_EQ("3", columns(list));
    EXPECT_EQ("12/2", regions(frame, "Moving"));
    frame.classifyUntracked("Moving", "human");
    frame.maskAsTracked("Moving");
    frame.spliceUntracked(&list, "Moving", ProcessFrame::all);
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ("312/3", regions(frame, "Moving"));
    EXPECT_TRUE(frame.nameUntracked().empty()); // claimed once, claimed for the frame
    EXPECT_EQ("human", frame.getUntrackedClass("Moving"));

    frame.addUntracked({7, 1, 2, 3}, "Moving", 0.5f);
    EXPECT_EQ("7312/4", regions(frame, "Moving"));
}

} // namespace
