#pragma once

#include "image/rk_row.h"

#include <string>

namespace test {

/// Calls work() with each form of the pixel loops in use in turn, and takes the one from before again.
template <class Work> void withEachForm(Work work)
{
    std::string const before = rk_row().name;
    for (rk_row_kernels const* const* form = rk_row_forms(); *form; ++form) {
        rk_row_use((*form)->name);
        work();
    }
    rk_row_use(before.c_str());
}

} // namespace test
