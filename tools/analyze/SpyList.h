#pragma once

#include <iosfwd>

namespace tools {

/// Writes a file of spies with one of each type that runs over frames, as its defaults are, laid out for people.
void listSpies(std::ostream& out);

} // namespace tools
