#pragma once

#include <cstdint>
#include <limits>
#include <vector>

/// A feature that a machine looks at, and the values that it had in training.
struct svm_range {
    int32_t id = 0; ///< ObjectFeatures::getFeatureVal
    int32_t min = std::numeric_limits<int32_t>::max();
    int32_t max = std::numeric_limits<int32_t>::min();

    /// max - min, which may be wider than 32 bits; negative for a range that has seen no value.
    int64_t width() const { return int64_t(max) - min; }
};

using svm_ranges = std::vector<svm_range>;
