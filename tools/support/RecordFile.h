#pragma once

#include <filesystem>

namespace rksl {
class Serializable;
}

namespace tools {

/// Writes the file form of a record in the place of any file that is there, which stays whole until the new one is.
/// Throws std::runtime_error when that fails.
void saveRecord(rksl::Serializable const& record, std::filesystem::path const& path);

} // namespace tools
