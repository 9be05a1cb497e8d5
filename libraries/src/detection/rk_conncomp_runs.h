#pragma once

#include <cstdint>

struct rk_conncomp;
struct rk_image;
struct rk_kernel;

/// Labels an image into conncomp->set by runs of foreground, with the labels that a walk over single pixels gives: a window with
/// two labels records one equivalence, and the later label wins. Where all that a stretch of a run can see is one label, the
/// stretch takes it at once; only at seams between labels single pixels are looked at. Arguments are valid. 0 for too many labels
/// or without memory.
int rk_label_runs(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel);
