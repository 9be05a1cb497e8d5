#include "goals/Extraction.h"

#include "image/rk_morphology.h"
#include "image/rk_threshold.h"
#include "image/rk_vertex.h"

#include <initializer_list>

Extraction::Extraction(uint32_t width, uint32_t height)
{
    rk_background_init(&mBackground, width, height, 0);
    rk_threshold_inittable(mTable, 256, 26);
    rk_detection_init(0.5f, 5, 5, rk_kernel_square, 4, &mDetection);
    for (rk_image* image : {&mStrength, &mForeground, &mScratch, &mMotion, &mEverywhere})
        rk_resize_image(image, width, height, 1, 255);
}

Extraction::~Extraction()
{
    rk_background_deinit(&mBackground);
    rk_detection_deinit(&mDetection);
    for (rk_image* image : {&mStrength, &mForeground, &mScratch, &mMotion, &mEverywhere})
        rk_free_image(image);
}

void Extraction::detectMotion(rk_image const& frame)
{
    rk_process_motion(&frame, &mForeground, &mMotion, &mDetection);
}

void Extraction::compare(rk_image const& frame)
{
    uint32_t count = 0;
    rk_background_compare(&mBackground, &frame, nullptr, &mStrength, &count);
}

void Extraction::threshold()
{
    rk_threshold_gray(mTable, 256, &mStrength, &mForeground);
}

void Extraction::closeAndOpen()
{
    static constexpr rk_morphology_step steps[] = {rk_step_dilate, rk_step_erode, rk_step_erode, rk_step_dilate};
    rk_morphology(&mForeground, &mScratch, steps, 4);
}

void Extraction::label()
{
    rk_vertex* regions = nullptr;
    uint32_t count = 0;
    rk_conncomp_process(&mForeground, 255, &mDetection.conncomp, &mDetection.kernel, &regions, &count);
    rk_free_vertices(&regions);
}

void Extraction::learn(rk_image const& frame)
{
    rk_background_update(&mBackground, &frame, nullptr, mEverywhere.data);
}
