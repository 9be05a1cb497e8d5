#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace camera {

/// Takes the place of the camera's event system: one JSON line for each event, {"time":"...Z","payload":"..."}, appended to a
/// file. Not thread-safe.
class EventFile {
public:
    /// path: "-" for standard output. Throws std::runtime_error when the file cannot be opened for appending.
    explicit EventFile(std::string const& path);

    /// False when the line could not be written. The line is complete in the file when this returns.
    bool append(std::string_view payload);

private:
    struct Close {
        void operator()(FILE* file) const;
    };
    std::unique_ptr<FILE, Close> mFile;
};

} // namespace camera
