#pragma once

#include "Recordings.h"

#include <filesystem>
#include <vector>

namespace tools {

struct CollectOptions {
    std::string className;
    std::string settings;
    std::filesystem::path out;
    Span span;
    std::vector<std::string> videos;
};

/// Adds a sample of each object of the videos to a file, and its picture to the folder beside it. The file is saved with each new
/// sample. Throws std::runtime_error; what was saved stays.
void collect(CollectOptions const& options, volatile std::sig_atomic_t const& stop);

} // namespace tools
