// Compiled with -mavx2 on x86-64; see libraries/CMakeLists.txt.
#ifdef __AVX2__
#include "image/rk_row_fast.h"

namespace {
rk_row_kernels const kernels = {"avx2", rk_form_avx2, difference, renew, difference_colour, running_sum, moving_sum, at_least,
    and3, or3, pack, unpack, two_valued, count_within, strength, distance};
}
rk_row_kernels const* const rk_row_avx2 = &kernels;
#else
#include "image/rk_row_forms.h"

rk_row_kernels const* const rk_row_avx2 = nullptr;
#endif
