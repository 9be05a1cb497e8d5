#pragma once

#include <fstream>
#include <iterator>
#include <string>

inline void put(std::string const& path, std::string const& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string contents(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
