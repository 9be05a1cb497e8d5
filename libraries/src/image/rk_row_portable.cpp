#include "image/rk_row_fast.h"

rk_row_kernels const rk_row_portable = {"portable", rk_form_portable, difference, renew, difference_colour, running_sum,
    moving_sum, at_least, and3, or3, pack, unpack, two_valued, count_within, strength, distance};
