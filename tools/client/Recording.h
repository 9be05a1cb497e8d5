#pragma once

#include "ObjectSource.h"

#include <filesystem>
#include <fstream>

namespace tools {

/// A file of what a server sent: the objects as they were on the wire, one behind the other. Failures are thrown as
/// std::runtime_error with the file's name.
class RecordingWriter {
public:
    /// Replaces the file.
    explicit RecordingWriter(std::filesystem::path const& path);

    void write(rksl::StreamData const& frame);

private:
    std::filesystem::path const mPath;
    std::ofstream mFile;
};

/// Gives the objects of a file. An end of file among them ends it, as it ends a connection.
class RecordingReader : public ObjectSource {
public:
    explicit RecordingReader(std::filesystem::path const& path);

    Next next(rksl::StreamData& frame) override;

private:
    [[noreturn]] void fail(char const* why) const;

    std::filesystem::path const mPath;
    std::ifstream mFile;
    uint64_t mPosition = 0; // bytes
};

} // namespace tools
