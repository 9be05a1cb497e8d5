#pragma once

#include <exception>
#include <string>
#include <utility>

namespace rkgpu {

/// A failure of a graphics processor. The one exception that a stage lets through: its frame may be lost on the device, so
/// whoever owns the device has to know.
class Exception : public std::exception {
public:
    explicit Exception(std::string text)
        : mText(std::move(text))
    {
    }
    char const* what() const noexcept override { return mText.c_str(); }

private:
    std::string mText;
};

} // namespace rkgpu
