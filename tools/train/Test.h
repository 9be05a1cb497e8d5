#pragma once

#include "Recordings.h"

#include <vector>

namespace tools {

struct TestOptions {
    std::string models; // folder
    std::string settings;
    Span span;
    std::vector<std::string> videos; // each "VIDEO", or "CLASS=VIDEO" for one in which all objects are of that class
};

/// Prints votes and decision of each object that began within the span, and a table of what is against what was decided.
/// Throws std::runtime_error.
void test(TestOptions const& options, volatile std::sig_atomic_t const& stop);

} // namespace tools
