#include <gtest/gtest.h>

#include "image/rk_morphology.h"
#include "image/rk_image.h"
#include "image/rkil_FlatImage.h"
#include "math/rk_bbox.h"
#include "support/picture.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using test::Picture;
using test::rowsOf;
using Rows = std::vector<std::string>;
using Gray = rkil::FlatImage<1>;

namespace {

unsigned char at(Gray const& image, unsigned int x, unsigned int y)
{
    return image.getImage()->data[rk_image_index(image.getImage(), x, y)];
}

/// The 3 by 3 square as it is defined: nine pixels at a time, from source into the interior of target.
Gray reference(bool erode, Gray const& source, Gray target)
{
    for (unsigned int y = 1; y + 1 < source.getHeight(); ++y)
        for (unsigned int x = 1; x + 1 < source.getWidth(); ++x) {
            unsigned char value = erode ? 255 : 0;
            for (unsigned int j = y - 1; j <= y + 1; ++j)
                for (unsigned int i = x - 1; i <= x + 1; ++i)
                    value = static_cast<unsigned char>(erode ? value & at(source, i, j) : value | at(source, i, j));
            target.getImage()->data[rk_image_index(target.getImage(), x, y)] = value;
        }
    return target;
}

/// The rectangle's form, a pixel at a time: rows and columns on its rim count as their plain bytes in the second pass.
Gray referenceRegion(bool erode, Gray const& source, Gray target, rk_bbox const& box)
{
    auto const combine = [=](unsigned char a, unsigned char b, unsigned char c) {
        return static_cast<unsigned char>(erode ? a & b & c : a | b | c);
    };
    auto const vertical = [&](unsigned int x, unsigned int y) {
        bool const rim = x == box.x || y == box.y || x + 1 == box.x + box.width || y + 1 == box.y + box.height;
        return rim ? at(source, x, y) : combine(at(source, x, y - 1), at(source, x, y), at(source, x, y + 1));
    };
    for (unsigned int y = box.y; y < box.y + box.height; ++y)
        for (unsigned int x = box.x; x < box.x + box.width; ++x) {
            bool const rim = x == box.x || y == box.y || x + 1 == box.x + box.width || y + 1 == box.y + box.height;
            target.getImage()->data[rk_image_index(target.getImage(), x, y)] =
                rim ? at(source, x, y) : combine(vertical(x - 1, y), vertical(x, y), vertical(x + 1, y));
        }
    return target;
}

std::vector<int> bytesOf(Gray const& image)
{
    return {image.getImage()->data, image.getImage()->data + image.getImage()->size};
}

Gray randomImage(std::mt19937& random, unsigned int width, unsigned int height, int kind)
{
    Gray image;
    image.resize(width, height);
    std::generate_n(image.getImage()->data, image.getImage()->size, [&] {
        switch (kind) {
        case 0:
            return static_cast<unsigned char>(random());
        case 1:
            return static_cast<unsigned char>(random() % 8 ? 255 : 0); // nearly full: erosion leaves something
        case 2:
            return static_cast<unsigned char>(random() % 16 ? 0 : 255);
        default:
            return static_cast<unsigned char>(1u << random() % 8);
        }
    });
    return image;
}

using Whole = int (*)(rk_image const*, rk_image*, rk_image*);
using Region = int (*)(rk_image const*, rk_image*, rk_image*, rk_bbox const*);
Whole const wholes[] = {rk_dilate_image, rk_erode_image};
Region const regions[] = {rk_dilate_image_roi, rk_erode_image_roi};

} // namespace

TEST(RkMorphology, EqualsTheNinePixelDefinition)
{
    std::mt19937 random(1);
    for (unsigned int width : {1u, 2u, 3u, 4u, 5u, 15u, 16u, 17u, 18u, 33u, 64u, 67u})
        for (unsigned int height : {1u, 2u, 3u, 4u, 9u})
            for (int kind = 0; kind < 4; ++kind)
                for (bool erode : {false, true}) {
                    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + " kind " + std::to_string(kind));
                    Gray const source = randomImage(random, width, height, kind);
                    Gray target = randomImage(random, width, height, 0), scratch(target), inPlace(source);
                    Gray const want = reference(erode, source, target), wantInPlace = reference(erode, source, source);
                    ASSERT_TRUE(wholes[erode](source.getImage(), target.getImage(), scratch.getImage()));
                    ASSERT_EQ(bytesOf(want), bytesOf(target));
                    ASSERT_TRUE(wholes[erode](inPlace.getImage(), inPlace.getImage(), scratch.getImage()));
                    ASSERT_EQ(bytesOf(wantInPlace), bytesOf(inPlace));
                }
}

TEST(RkMorphology, RectangleEqualsItsDefinition)
{
    std::mt19937 random(2);
    for (int round = 0; round < 400; ++round) {
        unsigned int const width = 1 + random() % 40, height = 1 + random() % 12;
        rk_bbox box = {static_cast<uint32_t>(random() % width), static_cast<uint32_t>(random() % height), 0, 0};
        box.width = 1 + static_cast<uint32_t>(random() % (width - box.x));
        box.height = 1 + static_cast<uint32_t>(random() % (height - box.y));
        bool const erode = round % 2;
        SCOPED_TRACE("round " + std::to_string(round));
        Gray const source = randomImage(random, width, height, round % 4);
        Gray target = randomImage(random, width, height, 0), scratch, inPlace(source);
        Gray const want = referenceRegion(erode, source, target, box), wantInPlace = referenceRegion(erode, source, source, box);
        scratch.resize(box.width, box.height);
        ASSERT_TRUE(regions[erode](source.getImage(), target.getImage(), scratch.getImage(), &box));
        ASSERT_EQ(bytesOf(want), bytesOf(target));
        ASSERT_TRUE(regions[erode](inPlace.getImage(), inPlace.getImage(), scratch.getImage(), &box));
        ASSERT_EQ(bytesOf(wantInPlace), bytesOf(inPlace));
    }
}

TEST(RkMorphology, PicturesOfBothOperations)
{
    Picture dot({".....", ".....", "..#..", ".....", "....."});
    Picture out({"#####", ".....", ".....", ".....", "....#"}), scratch({".....", ".....", ".....", ".....", "....."});
    ASSERT_TRUE(rk_dilate_image(&dot.image(), &out.image(), &scratch.image()));
    EXPECT_EQ((Rows{"#####", ".###.", ".###.", ".###.", "....#"}), rowsOf(out.image())) << "the rim stays";
    ASSERT_TRUE(rk_erode_image(&dot.image(), &out.image(), &scratch.image()));
    EXPECT_EQ((Rows{"#####", ".....", ".....", ".....", "....#"}), rowsOf(out.image()));

    // Without a region the rectangle is the image. Its rim comes from the source: (0, 2) stays dark, though it touches (0, 1).
    Picture corner({"##...", "##...", ".....", ".....", "....."});
    ASSERT_TRUE(rk_dilate_image_roi(&corner.image(), &out.image(), &scratch.image(), nullptr));
    EXPECT_EQ((Rows{"##...", "###..", ".##..", ".....", "....."}), rowsOf(out.image()));
}

TEST(RkMorphology, WhatDoesNotFitIsRefused)
{
    Picture low({"#.#", "#.#"}), out({"...", "..."}), scratch({"...", "..."}), large({"...", "...", "..."});
    EXPECT_TRUE(rk_erode_image(&low.image(), &out.image(), &scratch.image()));
    EXPECT_EQ((Rows{"...", "..."}), rowsOf(out.image())) << "below three rows nothing is done";
    EXPECT_FALSE(rk_erode_image(&low.image(), &out.image(), &large.image()));
    EXPECT_FALSE(rk_dilate_image(&low.image(), &out.image(), &out.image())) << "scratch is another image";

    Picture source({"...", "...", "..."}), target({"...", "...", "..."});
    rk_bbox const beyond = {1, 1, 3, 2}, wrapping = {4294967295u, 0, 3, 2};
    for (rk_bbox const& box : {beyond, wrapping})
        EXPECT_FALSE(rk_erode_image_roi(&source.image(), &target.image(), &scratch.image(), &box));
    rk_bbox const smaller = {0, 0, 2, 2};
    EXPECT_FALSE(rk_erode_image_roi(&source.image(), &target.image(), &scratch.image(), &smaller)) << "scratch has another size";
}
