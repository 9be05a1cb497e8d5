#pragma once

#include <string>

namespace tools {

/// Text from a server, fit for a terminal: control characters become "?".
std::string printable(std::string text);

/// Whether a name from a server may become part of a file's name: letters, digits, blanks, "-" and "_".
bool isFileWord(std::string const& name);

} // namespace tools
