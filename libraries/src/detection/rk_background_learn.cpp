#include "detection/rk_background_learn.h"

#include "detection/rk_background_mirror.h"
#include "image/rk_row.h"

namespace {

template <void (*Update)(rk_distribution*, int32_t)>
uint32_t learn(rk_distribution* model, uint8_t* mirror_mean, uint8_t* mirror_inverse, uint8_t const* values, uint8_t const* mask,
    size_t pixels, size_t stride)
{
    uint32_t misfit = 0;
    for (size_t i = 0; i < pixels; ++i) {
        if (!mask[i])
            continue;
        Update(&model[i], values[stride * i]);
        misfit |= rk_background_mirror(model[i], &mirror_mean[stride * i], &mirror_inverse[stride * i]);
    }
    return misfit;
}

} // namespace

rk_background_learn_run rk_background_learn()
{
    switch (rk_row().form) {
    case rk_form_plain:
        return learn<rk_distribution_update>;
    case rk_form_avx2:
        return rk_background_learn_avx2;
    default:
        return learn<rk_distribution_update_fast>;
    }
}
