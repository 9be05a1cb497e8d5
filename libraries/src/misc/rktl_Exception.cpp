#include "misc/rktl_Exception.h"

namespace rktl {

Exception::Exception(char const* text)
    : mText(text ? text : "")
{
}

Exception::Exception(char const* path, char const* className, std::string const& message, unsigned int line)
    : mText(std::string(path) + " (" + std::to_string(line) + "): " + className + "::" + message)
{
}

char const* Exception::what() const noexcept
{
    return mText.c_str();
}

} // namespace rktl
