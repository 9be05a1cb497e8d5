#include <gtest/gtest.h>

#include "detection/rk_conncomp.h"
#include "support/forms.h"
#include "support/picture.h"

#include <random>

namespace {

/// A labelling with a kernel, freed at the end; its words are "x,y widthxheight; ..." with extents as delivered.
class Labelling {
public:
    explicit Labelling(uint32_t size, uint32_t type = rk_kernel_square)
    {
        EXPECT_TRUE(rk_conncomp_init(2, &mConncomp)); // small, so that every test also grows the graph
        EXPECT_TRUE(rk_init_kernel(&mKernel, size, size, type));
    }
    ~Labelling()
    {
        rk_conncomp_deinit(&mConncomp);
        rk_free_kernel(&mKernel);
    }

    /// What the application runs.
    std::string boxes(rk_image const& image)
    {
        rk_vertex* list = nullptr;
        uint32_t count = 0;
        int const result = rk_conncomp_process(&image, 255, &mConncomp, &mKernel, &list, &count);
        return words(result, list, count);
    }

    /// The plain definition over the dense matrix.
    std::string boxesByGraph(rk_image const& image)
    {
        rk_vertex* list = nullptr;
        uint32_t count = 0;
        int const result = rk_label_image(&image, 255, &mConncomp, &mKernel) && rk_resolve_graph(mConncomp.graph, &list, &count);
        return words(result, list, count);
    }

private:
    static std::string words(int result, rk_vertex* list, uint32_t count)
    {
        std::string text = result ? "" : "failed";
        uint32_t length = 0;
        for (rk_vertex const* blob = list; blob; blob = blob->next, ++length) {
            EXPECT_EQ(1.0f, blob->motion_score);
            text += (length ? "; " : "") + std::to_string(blob->x) + "," + std::to_string(blob->y) + " " +
                std::to_string(blob->width) + "x" + std::to_string(blob->height);
        }
        EXPECT_EQ(length, count);
        rk_free_vertices(&list);
        return text;
    }

    rk_conncomp mConncomp;
    rk_kernel mKernel;
};

} // namespace

TEST(ConnComp, WhatJoins)
{
    struct {
        char const* why;
        uint32_t kernel;
        std::vector<std::string> rows;
        char const* boxes;
    } const cases[] = {
        {"corner to corner, both ways", 3, {"#...#", ".#.#.", "..#.."}, "0,0 4x2"},
        {"labels joined only through a third", 3, {"#.#.#", "#####"}, "0,0 4x1"},
        {"one empty column joins under 5 x 5", 5, {"##.##"}, "0,0 4x0"},
        {"two empty columns do not", 5, {"##..##"}, "0,0 1x0; 4,0 1x0"},
        {"one empty row joins under 5 x 5, two do not", 5, {"##", "..", "##", "..", "..", "##"}, "0,0 1x2; 0,5 1x0"},
        {"an image smaller than the kernel", 11, {"#.", ".#"}, "0,0 1x1"},
        {"in the order of the first label, not of the left edge", 3, {"...#", "#...", "#..."}, "3,0 0x0; 0,1 0x1"},
    };
    for (auto const& c : cases) {
        Labelling labelling(c.kernel);
        test::Picture const picture(c.rows);
        EXPECT_EQ(c.boxes, labelling.boxes(picture.image())) << c.why;
        EXPECT_EQ(c.boxes, labelling.boxesByGraph(picture.image())) << c.why;
    }
}

// The 5 x 5 ellipse leaves its four corners out: their distances to both foci add up to 2 * sqrt(2 * 2 + 2 * 2) > 5.
TEST(ConnComp, EllipseDoesNotJoinThroughItsCorners)
{
    test::Picture const picture({"#....", ".....", "..#.."});
    EXPECT_EQ("0,0 2x2", Labelling(5, rk_kernel_square).boxes(picture.image()));
    EXPECT_EQ("0,0 0x0; 2,2 0x0", Labelling(5, rk_kernel_ellipse).boxes(picture.image()));
}

TEST(ConnComp, FastRoadEqualsTheDefinition)
{
    std::mt19937 random(20240607);
    for (uint32_t kernel : {1u, 3u, 5u, 11u, 13u})
        for (uint32_t type : {uint32_t(rk_kernel_square), uint32_t(rk_kernel_ellipse)}) {
            Labelling labelling(kernel, type);
            for (int round = 0; round < 80; ++round) {
                uint32_t const width = 1 + random() % (round % 8 ? 70 : 400);
                uint32_t const height = 1 + random() % 50;
                unsigned const percent = round % 3 == 0 ? 5 : round % 3 == 1 ? 30 : 70;
                uint32_t const grain = 1 + round % 4 * 3; // pixels a side of what is drawn: long runs, and gaps of all sizes
                rk_image image;
                ASSERT_TRUE(rk_init_image(&image, width, height, 1));
                for (uint32_t i = 0; i < image.size; ++i)
                    image.data[i] = static_cast<unsigned char>(random() % 3 * 127);
                for (uint32_t y = 0; y < height; y += grain)
                    for (uint32_t x = 0; x < width; x += grain)
                        if (random() % 100 < percent)
                            for (uint32_t row = y; row < std::min(y + grain, height); ++row)
                                std::fill_n(image.data + row * width + x, std::min(grain, width - x), 255);
                std::string const want = labelling.boxesByGraph(image);
                test::withEachForm([&] {
                    EXPECT_EQ(want, labelling.boxes(image))
                        << rk_row().name << " " << width << "x" << height << " kernel " << kernel << " round " << round;
                });
                rk_free_image(&image);
            }
        }
}

TEST(ConnComp, MoreLabelsThanFitAreAFailureOfTheFrame)
{
    // Isolated pixels, each a label: 2 x 2 apart under a kernel of one cell.
    auto const grid = [](uint32_t labels) {
        rk_image image;
        EXPECT_TRUE(rk_init_image(&image, 512, 2 * ((labels + 255) / 256), 1));
        for (uint32_t i = 0; i < labels; ++i)
            image.data[(i / 256) * 2 * 512 + (i % 256) * 2] = 255;
        return image;
    };
    Labelling labelling(1);
    rk_image most = grid(rk_label_set_max);
    std::string const boxes = labelling.boxes(most);
    EXPECT_EQ(rk_label_set_max - 1, static_cast<uint32_t>(std::count(boxes.begin(), boxes.end(), ';')));
    rk_image tooMany = grid(rk_label_set_max + 1);
    EXPECT_EQ("failed", labelling.boxes(tooMany));
    EXPECT_EQ(boxes, labelling.boxes(most)) << "the next frame works again";
    rk_free_image(&most);
    rk_free_image(&tooMany);
}
