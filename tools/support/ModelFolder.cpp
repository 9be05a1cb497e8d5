#include "support/ModelFolder.h"

#include <cctype>
#include <stdexcept>

namespace tools {

namespace {

namespace fs = std::filesystem;

constexpr char const* ENDING = ".model";

} // namespace

rksl::Set<rktl::String> modelFilesIn(fs::path const& folder)
{
    rksl::Set<rktl::String> paths;
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder, error))
        if (entry.path().extension() == ENDING)
            paths.insert(entry.path().string());
    if (paths.empty())
        throw std::runtime_error(folder.string() + ": holds no model files (*" + ENDING + ")");
    return paths;
}

fs::path modelFile(fs::path const& folder, rktl::String const& className)
{
    rktl::String name;
    for (char const c : className)
        if (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_')
            name += c;
        else
            name += rktl::String::fromFormat("%%%02X", static_cast<unsigned int>(static_cast<unsigned char>(c)));
    return folder / (name + ENDING);
}

} // namespace tools
