#pragma once

/// The hexcone colour model in single precision (A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978).
/// h: degrees, 0 to below 360. s, v: 0.0 to 1.0. Both give 1, or 0 for a null result.

/// Equal red, green and blue have h and s 0.
int rk_rgb_to_hsv(unsigned char r, unsigned char g, unsigned char b, float* h, float* s, float* v);

/// 0, with the results as they were, for an input that is negative or no number. A hue of 360 to below 420 counts as one of 0 to
/// below 60; a larger one gives v in all three. Each result is cut to a whole number and held to 0 to 255.
int rk_hsv_to_rgb(float h, float s, float v, unsigned char* r, unsigned char* g, unsigned char* b);
