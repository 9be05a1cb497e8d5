#include "Words.h"

#include <algorithm>

namespace tools {

std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; }, '?');
    return text;
}

bool isFileWord(std::string const& name)
{
    constexpr char const* allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 -_";
    return !name.empty() && name.size() <= 64 && name.find_first_not_of(allowed) == std::string::npos;
}

} // namespace tools
