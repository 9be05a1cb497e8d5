#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tools {

/// Trains a model for each class of the sample files, and writes them into a folder: none, when one of them cannot be trained.
/// Shows how far it came on a terminal. Throws std::runtime_error.
void train(std::filesystem::path const& out, std::vector<std::string> const& files);

} // namespace tools
