#include <gtest/gtest.h>

#include "detection/rk_candidate.h"

#include <algorithm>
#include <random>

static std::vector<rk_match> matchesOf(std::vector<float> const& confidences)
{
    std::vector<rk_match> matches(confidences.size());
    for (size_t i = 0; i < confidences.size(); ++i) {
        matches[i].confidence = confidences[i];
        matches[i].width_score = static_cast<float>(i); // the place it comes from
    }
    return matches;
}

// Worked out by hand: which of two equal pairs is linked first must not change.
TEST(CandidateHeapsort, OrderOfEqualsFollowsFromTheirPlaces)
{
    struct {
        std::vector<float> confidences;
        std::vector<float> places;
    } const cases[] = {
        {{}, {}}, {{5}, {0}}, {{5, 5}, {1, 0}}, {{5, 5, 5}, {1, 2, 0}}, {{5, 5, 5, 5}, {1, 2, 3, 0}},
        {{1, 2, 2}, {0, 2, 1}},       // the left of two equal children moves up
        {{1, 2, 2, 1}, {0, 3, 2, 1}}, // the root sinks to the left and stops above an equal child
    };
    for (auto const& c : cases) {
        std::vector<rk_match> matches = matchesOf(c.confidences);
        rk_candidate_heapsort(matches.data(), static_cast<uint32_t>(matches.size()));
        std::vector<float> places;
        for (rk_match const& match : matches)
            places.push_back(match.width_score);
        EXPECT_EQ(c.places, places) << c.confidences.size() << " entries";
    }
}

TEST(CandidateHeapsort, SortsAscending)
{
    std::mt19937 random(20261122);
    for (uint32_t count = 0; count < 70; ++count) {
        std::vector<float> confidences(count);
        for (float& confidence : confidences)
            confidence = static_cast<float>(random() % 16);
        std::vector<rk_match> matches = matchesOf(confidences);
        rk_candidate_heapsort(matches.data(), count);
        std::sort(confidences.begin(), confidences.end());
        for (uint32_t i = 0; i < count; ++i)
            ASSERT_EQ(confidences[i], matches[i].confidence) << i << " of " << count;
    }
}
