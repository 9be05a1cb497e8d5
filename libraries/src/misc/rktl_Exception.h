#pragma once

#include <exception>
#include <source_location>
#include <string>

namespace rktl {

/// The one exception class of the tree. Nothing else is thrown by our own code; whoever calls into the standard library or
/// into a stage catches std::exception, which is the base of this.
class Exception : public std::exception
{
public:
    /// A bare message, for the few places that raise without naming their source.
    explicit Exception(char const* text);

    /// "path (line): class::message", the form of nearly all our messages.
    /// path: the source file below the root of the tree without its ending, such as "libraries/src/misc/rktl_SmartPtr".
    /// The line is that of the caller.
    Exception(char const* path, char const* className, std::string const& message,
        std::source_location where = std::source_location::current());

    /// Lives as long as the exception.
    char const* what() const noexcept override;

private:
    std::string mText;
};

} // namespace rktl
