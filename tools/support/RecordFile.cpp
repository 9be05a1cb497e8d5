#include "support/RecordFile.h"

#include "streams/rksl_Serializable.h"

#include <stdexcept>

namespace tools {

void saveRecord(rksl::Serializable const& record, std::filesystem::path const& path)
{
    std::filesystem::path const part = path.string() + ".part";
    std::error_code error;
    bool const written = record.toFile(part.c_str());
    if (written)
        std::filesystem::rename(part, path, error);
    if (written && !error)
        return;
    std::filesystem::remove(part, error);
    throw std::runtime_error(path.string() + ": cannot be written; what was there before is still there");
}

} // namespace tools
