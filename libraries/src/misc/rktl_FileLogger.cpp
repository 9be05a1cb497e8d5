#include "misc/rktl_FileLogger.h"

#include "misc/rktl_ElapsedTime.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace rktl {

namespace {

constexpr int32_t defaultSizeLimit = 1048576; // bytes

/// -1 for a file that cannot be asked about.
int64_t sizeOf(String const& path)
{
    std::error_code failure;
    uintmax_t const size = std::filesystem::file_size(path.c_str(), failure);
    return failure ? -1 : int64_t(size);
}

} // namespace

FileLogger::FileLogger()
    : FileLogger("", defaultSizeLimit)
{
}

FileLogger::FileLogger(String const& path, int32_t sizeLimit)
    : Logger("%H:%M:%S.%s %m-%d-%y")
    , mPath(path)
    , mSizeLimit(sizeLimit)
{
}

FileLogger::FileLogger(FileLogger const& other)
    : FileLogger(other.mPath, other.mSizeLimit)
{
}

FileLogger& FileLogger::operator=(FileLogger const& other)
{
    mPath = other.mPath;
    mSizeLimit = other.mSizeLimit;
    return *this;
}

FileLogger::~FileLogger() noexcept(false)
{
    stop(ElapsedTime(destructorLimit));
}

bool FileLogger::output(LogType const&, String const& line)
{
    std::fwrite(line.data(), 1, line.size(), stdout);
    if (mPath.empty())
        return true;
    if (std::FILE* const file = std::fopen(mPath.c_str(), sizeOf(mPath) < mSizeLimit ? "a" : "w")) {
        std::fwrite(line.data(), 1, line.size(), file);
        std::fclose(file);
    }
    return true;
}

} // namespace rktl
