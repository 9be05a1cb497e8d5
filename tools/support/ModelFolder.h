#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Set.h"

#include <filesystem>

namespace tools {

/// Paths of the model files of a folder. Throws std::runtime_error when there are none.
rksl::Set<rktl::String> modelFilesIn(std::filesystem::path const& folder);

/// Where the model of a class stands. What cannot be in the name of a file is written as "%" and two hex digits.
std::filesystem::path modelFile(std::filesystem::path const& folder, rktl::String const& className);

} // namespace tools
