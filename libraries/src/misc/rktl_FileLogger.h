#pragma once

#include "misc/rktl_Logger.h"
#include "misc/rktl_String.h"

#include <cstdint>

namespace rktl {

/// Writes the lines to standard output and to a file, which starts over from nothing at the first line that finds it at its
/// limit: that one file is all the history there is. It is opened for each line, so it may be moved or deleted at any time.
/// What cannot be written to the file is not reported.
class FileLogger : public Logger {
public:
    /// Standard output only.
    FileLogger();

    /// sizeLimit: bytes; the file exceeds it by less than one line.
    FileLogger(String const& path, int32_t sizeLimit);

    /// Path and limit only; each logger has its own ring and worker. An assignment waits for no line that is being written:
    /// the logger assigned to must not run.
    FileLogger(FileLogger const& other);
    FileLogger& operator=(FileLogger const& other);

    /// Stops with a limit of 15 seconds.
    ~FileLogger() override;

protected:
    bool output(LogType const& type, String const& line) override;

private:
    String mPath;
    int32_t mSizeLimit; // bytes
};

} // namespace rktl
