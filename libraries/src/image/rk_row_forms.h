#pragma once

#include "image/rk_row.h"

/// The bodies behind rk_row, for its dispatch alone.
extern rk_row_kernels const rk_row_plain;
extern rk_row_kernels const rk_row_portable;
extern rk_row_kernels const* const rk_row_avx2; ///< null in a build for another processor
