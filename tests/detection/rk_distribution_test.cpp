#include <gtest/gtest.h>

#include "detection/rk_distribution.h"

#include <cmath>

namespace {

rk_distribution fresh(float weight, uint32_t minStdev)
{
    rk_distribution d = {};
    rk_distribution_init();
    rk_distribution_reset(&d);
    EXPECT_EQ(1, rk_distribution_set_weight(&d, weight));
    EXPECT_EQ(1, rk_distribution_set_min_stdev(&d, minStdev));
    return d;
}

} // namespace

TEST(Distribution, TablesHoldTheInverseSquareAndTheQuotients)
{
    rk_distribution_init();
    // 255 / 1.1^2 = 210.7, 255 / 1.2^2 = 177.08, 255 / 2^2 = 63.75, 255 / 9.9^2 = 2.6
    struct {
        int tenths, membership;
    } const memberships[] = {{0, 255}, {10, 255}, {11, 210}, {12, 177}, {20, 63}, {99, 2}};
    for (auto const& m : memberships)
        EXPECT_EQ(m.membership, g_CompTable[m.tenths]) << m.tenths;
    struct {
        int stdev, inverse;
    } const quotients[] = {{0, 1280}, {1, 1280}, {2, 640}, {3, 426}, {15, 85}, {1279, 1}};
    for (auto const& q : quotients)
        EXPECT_EQ(q.inverse, g_DivTable[q.stdev]) << q.stdev;
}

TEST(Distribution, WeightIsStoredInWhole128ths)
{
    rk_distribution d = fresh(0.5f, 15);
    struct {
        float weight;
        int stored;
    } const cases[] = {{0.1f, 12}, {0.01f, 1}, {0.0f, 0}, {1.0f, 128}};
    for (auto const& c : cases) {
        EXPECT_EQ(1, rk_distribution_set_weight(&d, c.weight));
        EXPECT_EQ(c.stored, d.weight) << c.weight;
    }
    for (float bad : {-0.001f, 1.001f, NAN})
        EXPECT_EQ(0, rk_distribution_set_weight(&d, bad));
    EXPECT_EQ(128, d.weight);
    for (uint32_t bad : {0u, 46341u, UINT32_MAX})
        EXPECT_EQ(0, rk_distribution_set_min_stdev(&d, bad));
    EXPECT_EQ(15, d.min_stdev);
    EXPECT_EQ(225, d.min_variance);
}

TEST(Distribution, LearnsInWholeNumbersRoundedDown)
{
    rk_distribution d = fresh(0.1f, 15);
    rk_distribution_update(&d, 100);
    EXPECT_EQ(100, d.mean);
    EXPECT_EQ(10000, d.mean_square);
    EXPECT_EQ(15, d.stdev);
    EXPECT_EQ(0, d.inverse_stdev);
    EXPECT_EQ(0, d.unset);

    // (100 * 116 + 12 * 200) / 128 = 109.4; (10000 * 116 + 12 * 40000) / 128 = 12812.5; 12812 - 109^2 = 931 = 30.5^2
    rk_distribution_update(&d, 200);
    EXPECT_EQ(109, d.mean);
    EXPECT_EQ(12812, d.mean_square);
    EXPECT_EQ(30, d.stdev);
    EXPECT_EQ(42, d.inverse_stdev); // 1280 / 30

    // (12812 * 116 + 12 * 11881) / 128 = 12724.7; 12724 - 109^2 = 843, now below the minimum of 40^2
    rk_distribution_set_min_stdev(&d, 40);
    rk_distribution_update(&d, 109);
    EXPECT_EQ(12724, d.mean_square);
    EXPECT_EQ(40, d.stdev);
    EXPECT_EQ(42, d.inverse_stdev); // keeps its last value

    rk_distribution_reset(&d);
    EXPECT_EQ(255, d.unset);
    EXPECT_EQ(255, d.stdev);
    EXPECT_EQ(12, d.weight);
    EXPECT_EQ(42, d.inverse_stdev);
    EXPECT_EQ(0, d.mean + d.mean_square + d.min_stdev + d.min_variance);
}

// With a weight of one half the variance after two samples is (difference / 2)^2: 225 for 30, which is not above the
// minimum of 15^2, and 256 for 32.
TEST(Distribution, VarianceAtTheMinimumIsNoise)
{
    rk_distribution d = fresh(0.5f, 15);
    rk_distribution_update(&d, 100);
    rk_distribution_update(&d, 130);
    EXPECT_EQ(15, d.stdev);
    EXPECT_EQ(0, d.inverse_stdev);

    d = fresh(0.5f, 15);
    rk_distribution_update(&d, 100);
    rk_distribution_update(&d, 132);
    EXPECT_EQ(16, d.stdev);
    EXPECT_EQ(80, d.inverse_stdev);
}

TEST(Distribution, MembershipFallsWithTheDistanceInTenths)
{
    rk_distribution d = fresh(0.1f, 15);
    d.mean = 100;
    d.inverse_stdev = 80;
    EXPECT_EQ(255, rk_distribution_membership(&d, 250)); // unset
    d.unset = 0;
    EXPECT_EQ(255, rk_distribution_membership(&d, 117)); // 80 * 17 / 128 = 10.6
    EXPECT_EQ(210, rk_distribution_membership(&d, 118)); // 80 * 18 / 128 = 11.25
    EXPECT_EQ(210, rk_distribution_membership(&d, 82));
    d.inverse_stdev = 128; // a step is a tenth
    EXPECT_EQ(2, rk_distribution_membership(&d, 199));
    EXPECT_EQ(0, rk_distribution_membership(&d, 200));
    EXPECT_EQ(0, rk_distribution_membership(&d, 0));
    d.inverse_stdev = 0;
    EXPECT_EQ(255, rk_distribution_membership(&d, 255)); // no spread was ever seen
}
