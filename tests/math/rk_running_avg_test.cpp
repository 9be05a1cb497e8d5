#include <gtest/gtest.h>

#include "math/rk_running_avg.h"

#include <cmath>

TEST(RunningAvg, FirstSampleCountsInFullLaterOnesByWeight)
{
    rk_running_avg average = {7.0f, 0.0f, 0.0f, 1};
    ASSERT_EQ(1, rk_running_avg_reset(&average, 0.25f));
    rk_running_avg_add(&average, 8.0f);
    EXPECT_EQ(8.0f, average.value);
    rk_running_avg_add(&average, 16.0f);
    EXPECT_EQ(10.0f, average.value); // 16 * 0.25 + 8 * 0.75
    rk_running_avg_add(&average, 0.0f);
    EXPECT_EQ(7.5f, average.value);
}

TEST(RunningAvg, WeightOutsideItsRangeIsRefused)
{
    rk_running_avg average = {3.0f, 0.5f, 0.5f, 1};
    for (float bad : {-0.001f, 1.001f, NAN, INFINITY}) {
        EXPECT_EQ(0, rk_running_avg_set_weight(&average, bad));
        EXPECT_EQ(0.5f, average.weight);
        EXPECT_EQ(0.5f, average.complement);
    }
    for (float limit : {0.0f, 1.0f}) {
        EXPECT_EQ(1, rk_running_avg_set_weight(&average, limit));
        EXPECT_EQ(limit, average.weight);
        EXPECT_EQ(1.0f - limit, average.complement);
    }
    EXPECT_EQ(3.0f, average.value);                     // a new weight keeps the average
    EXPECT_EQ(0, rk_running_avg_reset(&average, 2.0f)); // a refused weight does not keep the samples
    EXPECT_EQ(0.0f, average.value);
    EXPECT_EQ(0, average.started);
    EXPECT_EQ(1.0f, average.weight);
    EXPECT_EQ(0, rk_running_avg_set_weight(nullptr, 0.5f));
}
