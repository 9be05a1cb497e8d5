#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

#include "math/rk_running_avg.h"
#include "support/virtual_clock.h"

#include <memory>

namespace {

/// Dark left of column 2, `value` from there on: dx is 4 * value beside the step, orientation 1.
std::unique_ptr<ByteImage> step(uint8_t value)
{
    return std::make_unique<ByteImage>(5, 5, 1, std::vector<uint8_t>{0, 0, value, value, value});
}

} // namespace

TEST(BackgroundEdges, OrientationIsSeededAveragedAndForgotten)
{
    VirtualClock clock;
    BackgroundModel model(5, 5, 0);
    model.track_edges = 1;
    rk_background_set_weight(&model, 0.25f);
    std::vector<uint8_t> mask(25, 1);
    mask[11] = 0;
    auto const weak = step(50), strong = step(51);
    ByteImage below(5, 5, 1);
    ByteImage const flat(5, 5, 1, 10);
    std::fill(below.data + 10, below.data + 25, 100); // bright at the bottom: dy = -400, orientation 270

    struct {
        char const* why;
        uint32_t now;
        rk_image const* image;
        float value;
        int started;
        uint32_t time;
    } const steps[] = {
        {"a gradient of 200 is noise", 10000, weak.get(), 0.0f, 0, 0},
        {"first edge", 10010, strong.get(), 1.0f, 0, 10010},
        {"the second one starts the average", 10020, &below, 270.0f, 1, 10020},
        {"the third one is blended: 0.25 + 0.75 * 270", 10030, strong.get(), 202.75f, 1, 10030},
        {"kept for 2000 ms", 12030, &flat, 202.75f, 1, 10030},
        {"and no longer", 12031, &flat, 0.0f, 1, 10030},
        {"found again", 12040, &below, 270.0f, 1, 12040},
        {"blended at once: 0.25 + 0.75 * 270", 12050, strong.get(), 202.75f, 1, 12050},
        {"2000 ms before tick 1000 is late in the clock's turn", 1000, &flat, 0.0f, 1, 12050},
    };
    size_t const pixel = 7; // (2, 1): beside both steps
    for (auto const& s : steps) {
        SCOPED_TRACE(s.why);
        clock.setTicks(s.now);
        ASSERT_EQ(1, rk_background_update(&model, s.image, nullptr, mask.data()));
        EXPECT_FLOAT_EQ(s.value, model.edge_model[pixel].value);
        EXPECT_EQ(s.started, model.edge_model[pixel].started);
        EXPECT_EQ(s.time, model.edge_time[pixel]);
        EXPECT_EQ(0u, model.edge_time[11]); // masked
        EXPECT_EQ(0u, model.edge_time[2]);  // the border has no gradient
    }
}
