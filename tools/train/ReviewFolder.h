#pragma once

#include "SampleFile.h"

#include <filesystem>
#include <string>
#include <vector>

struct rk_image;

namespace tools {

/// What a person looks at to find samples that are wrong: a folder beside the file of samples with a picture of each, and the
/// text "list.txt" with a line for each: its number, its class, and where it comes from, with tabs between them.
///
/// A sample is struck by removing its picture or by a "-" in front of its line. Another class in its line gives it that class.
class ReviewFolder {
public:
    static constexpr char const* ending = ".review";

    explicit ReviewFolder(std::filesystem::path const& folder);

    /// The folder of a file of samples.
    static std::filesystem::path of(std::filesystem::path const& samples) { return samples.string() + ending; }
    /// And back. Throws std::runtime_error for a folder of another name.
    static std::filesystem::path samplesOf(std::filesystem::path const& folder);

    /// Throw std::runtime_error when that cannot be written.
    void add(TrainingData const& sample, rk_image const& montage, std::string const& origin);

    struct Outcome {
        std::vector<int32_t> struck;
        std::vector<int32_t> renamed; // given another class
    };

    /// Does with the samples what the person said. Throws std::runtime_error, with nothing changed, when there is no picture at
    /// all or the list cannot be read.
    Outcome apply(rksl::List<TrainingData>& samples) const;

    /// Removes the pictures and lines of samples that are not there any more.
    void tidy(rksl::List<TrainingData> const& samples) const;

private:
    struct Line {
        bool struck;
        int32_t number;
        std::string name;
        std::string origin; // the rest, as it stands
    };
    std::vector<Line> readList() const;
    std::filesystem::path picture(int32_t number) const;

    std::filesystem::path const mFolder;
};

} // namespace tools
