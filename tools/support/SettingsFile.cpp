#include "support/SettingsFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tools {

namespace {

namespace fs = std::filesystem;

constexpr char const* CUSTOM = "html/settings_xml.txt";
constexpr char const* DEFAULTS = "html/default_settings_xml.txt";

bool hasText(fs::path const& path)
{
    std::error_code error;
    auto const size = fs::file_size(path, error);
    return !error && size > 0;
}

/// The defaults where this program is installed, or in the source tree that it was built in.
std::string shippedDefaults()
{
    std::error_code error;
    fs::path const program = fs::read_symlink("/proc/self/exe", error);
    for (fs::path folder = program.parent_path(); folder.has_relative_path(); folder = folder.parent_path())
        for (char const* const home : {"share/contraflow", "package"})
            if (fs::path const path = folder / home / DEFAULTS; hasText(path))
                return path;
    throw std::runtime_error("no default settings were found beside this program; name a file with --settings");
}

std::string usualFile()
{
    char const* const home = std::getenv("CS_APP_HOME");
    if (!home)
        return shippedDefaults();
    for (char const* const name : {CUSTOM, DEFAULTS})
        if (fs::path const path = fs::path(home) / name; hasText(path))
            return path;
    throw std::runtime_error(std::string(home) + ": holds no settings (" + CUSTOM + " or " + DEFAULTS + ")");
}

} // namespace

SettingsMap readSettingsFile(std::string path)
{
    if (path.empty())
        path = usualFile();
    std::ifstream file(path, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file || text.empty())
        throw std::runtime_error(path + ": cannot be read, or is empty");
    SettingsMap settings;
    if (!parseSettings(text, settings))
        throw std::runtime_error(path + ": is no settings text (one element that holds one element for each setting)");
    return settings;
}

} // namespace tools
