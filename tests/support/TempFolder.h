#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// A folder of the test's own, gone with everything in it when the test ends.
class TempFolder {
public:
    TempFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "contraflow-XXXXXX";
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder " + name);
        mPath = name;
    }
    ~TempFolder() { std::filesystem::remove_all(mPath); }
    TempFolder(TempFolder const&) = delete;
    TempFolder& operator=(TempFolder const&) = delete;

    std::string operator/(std::string const& name) const { return mPath / name; }
    std::string path() const { return mPath; }

private:
    std::filesystem::path mPath;
};
