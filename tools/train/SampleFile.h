#pragma once

#include "trackers/SvmClassification/TrainingData.h"

#include <filesystem>

namespace tools {

/// Labelled samples in a file. Each has a number of its own in TrainingData::mNumber, from 1, which is never given again while
/// the highest one stays.
class SampleFile {
public:
    /// Reads the samples. Throws std::runtime_error, with the number of the sample, for what are none; with mayBeMissing no file
    /// is no samples.
    explicit SampleFile(std::filesystem::path const& path, bool mayBeMissing = false);

    rksl::List<TrainingData>& samples() { return mSamples; }
    rksl::List<TrainingData> const& samples() const { return mSamples; }

    /// Appends a sample under its number, which is given back.
    int32_t add(TrainingData sample);

    /// The file stays as it was when it cannot be written, which throws std::runtime_error.
    void save() const;

private:
    std::filesystem::path mPath;
    rksl::List<TrainingData> mSamples;
    int32_t mLast = 0;
};

} // namespace tools
