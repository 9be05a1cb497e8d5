#include <gtest/gtest.h>

#include "math/rkml_Line2d.h"

using rkml::Point2D;
using IntLine = rkml::Line2D<int>;

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
        {"one point", {{3, 4}}, {3, 4}, {3, 4}},
    };
    for (auto const& c : cases) {
        IntLine const line = IntLine::bestFit(c.points);
        EXPECT_EQ(c.first, line.first()) << c.why << ": " << line.first().x << ", " << line.first().y;
        EXPECT_EQ(c.second, line.second()) << c.why << ": " << line.second().x << ", " << line.second().y;
    }
}
