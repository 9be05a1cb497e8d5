#pragma once

#include <exception>
#include <string>

namespace rktl {

/// The one exception class of the tree. Nothing else is thrown by our own code; whoever calls into the standard library or
/// into a stage catches std::exception, which is the base of this.
class Exception : public std::exception {
public:
    /// A bare message, for the few places that raise without naming their source.
    explicit Exception(char const* text);

    /// "path (line): class::message", the form of nearly all our messages.
    /// path: the source file below the root of the tree without its ending, such as "libraries/src/misc/rktl_SmartPtr".
    /// The line is that of the caller; both our compilers know __builtin_LINE, which is all of std::source_location that they
    /// share.
    Exception(char const* path, char const* className, std::string const& message, unsigned int line = __builtin_LINE());

    /// Lives as long as the exception.
    char const* what() const noexcept override;

private:
    std::string mText;
};

} // namespace rktl
