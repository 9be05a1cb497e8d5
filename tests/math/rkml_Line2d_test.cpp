#include <gtest/gtest.h>

#include "math/rkml_Line2d.h"
#include "math/rkml_RunningAvg.h"
#include "math/rkml_Utility.h"
#include "support/bytes.h"

#include <cmath>

using rkml::Point2D;
using FloatLine = rkml::Line2D<float>;
using IntLine = rkml::Line2D<int>;

TEST(Line2D, SignedDistanceTellsTheSide)
{
    FloatLine const line({0, 0}, {10, 0}); // distance is (10 * (0 - py)) / 10 = -py
    EXPECT_EQ(-3.0, line.signedDistanceTo({5, 3}));
    EXPECT_EQ(3.0, line.signedDistanceTo({-50, -3}));
    EXPECT_EQ(0.0, line.signedDistanceTo({99, 0}));
    EXPECT_EQ(3.0, FloatLine({10, 0}, {0, 0}).signedDistanceTo({5, 3}));
    EXPECT_EQ(5.0, FloatLine({1, 1}, {1, 1}).signedDistanceTo({4, 5})) << "a line of one point";
}

TEST(Line2D, IntersectionIsNotRounded)
{
    Point2D<float> const crossing = FloatLine({0, 0}, {1, 1}).getIntersection(FloatLine({0, 5}, {1, 4}));
    EXPECT_EQ(Point2D<float>(2.5f, 2.5f), crossing);
    EXPECT_EQ("rkml::Line2D::intersection() - intersection doesn't exist", support::messageOf([] {
        FloatLine({0, 0}, {1, 1}).getIntersection(FloatLine({5, 0}, {7, 2}));
    }));
}

TEST(Line2D, BestFitIsTheRegressionOfYOnX)
{
    struct {
        char const* why;
        std::vector<Point2D<int>> points;
        Point2D<int> first;
        Point2D<int> second;
    } const cases[] = {
        {"a line", {{0, 1}, {2, 5}, {1, 3}}, {0, 1}, {2, 5}},
        // n 3, Sx 3, Sy 4, Sxy 6, Sxx 5: m = (18 - 12) / (15 - 9) = 1, c = (4 - 3) / 3: from 0.33 to 2.33
        {"a fit", {{0, 0}, {1, 2}, {2, 2}}, {0, 0}, {2, 2}},
        // n 4, Sx 4, Sy 0, Sxy 2, Sxx 8: m = 8 / 16, c = -2 / 4: from -0.5 to 0.5
        {"halves away from 0", {{0, -1}, {2, 0}, {0, 0}, {2, 1}}, {0, -1}, {2, 1}},
        {"only negative x reaches to 0", {{-4, -8}, {-2, -4}}, {-4, -8}, {0, 0}},
        {"one x: straight up", {{5, 9}, {5, 2}, {5, 4}}, {5, 2}, {5, 9}},
        {"one negative x", {{-5, 9}, {-5, 2}}, {-5, 2}, {-5, 9}},
        {"one point", {{3, 4}}, {3, 4}, {3, 4}},
        {"none", {}, {0, 0}, {0, 0}},
    };
    for (auto const& c : cases) {
        IntLine const line = IntLine::bestFit(c.points);
        EXPECT_EQ(c.first, line.first()) << c.why << ": " << line.first().x << ", " << line.first().y;
        EXPECT_EQ(c.second, line.second()) << c.why << ": " << line.second().x << ", " << line.second().y;
    }
}

TEST(Utility, MedianSortsAndCutsWholeNumbers)
{
    std::vector<int> even = {2, 1};
    EXPECT_EQ(1, rkml::median(even));
    EXPECT_EQ(1, even.front());
    std::vector<int> large = {2147483647, 2147483647};
    EXPECT_EQ(2147483647, rkml::median(large));
    std::vector<int> negative = {-2, -1};
    EXPECT_EQ(-1, rkml::median(negative)); // -1.5
    std::vector<double> exact = {2.0, 1.0};
    EXPECT_EQ(1.5, rkml::median(exact));
    std::vector<unsigned char> bytes = {255, 9, 254};
    EXPECT_EQ(254, rkml::median(bytes));
    std::vector<int> none;
    EXPECT_EQ("rkml::median::Cannot take the median of an empty vector.", support::messageOf([&] { rkml::median(none); }));
    EXPECT_EQ(std::atan2(0.0, -1.0), rkml::PI);
}

TEST(RunningAvg, FirstSampleIsNotSpecial)
{
    rkml::RunningAvg<float> average(0.25f, 0.75f);
    average.add(8.0f);
    EXPECT_EQ(2.0f, average.value());
    average.add(4.0f);
    EXPECT_EQ(2.5f, average.value());
}
