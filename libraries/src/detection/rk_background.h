#pragma once

#include <cstdint>

struct rk_bbox;
struct rk_distribution;
struct rk_image;
struct rk_magnitude;
struct rk_running_avg;

/// A learned statistical picture of the empty scene, and how strongly each pixel of a frame differs from it.
///
/// Each channel of each pixel has a Gaussian of its own (rk_distribution). Beside the colours stands an optional model of
/// edge orientations, with which a region can be tested for being part of the scene rather than a new object.
///
/// All functions return 1 for success and 0 for failure, and 0 for a missing argument unless noted. A record belongs to
/// one thread. It is zeroed by the caller, initialised once per mode and size, and deinitialised before it is freed.
/// Colour images have four bytes a pixel: channels 0, 1, 2 of the mode, and one that is ignored.
struct rk_background {
    // Arrays of width * height elements, index x + width * y, owned by the record.
    rk_running_avg* edge_model; // mean edge orientation in degrees; value 0 means that no edge is known
    rk_distribution* channel0;  // gray, blue or L
    rk_distribution* channel1;  // green or a; null in mode 0
    rk_distribution* channel2;  // red or b; null in mode 0
    uint32_t* edge_time;        // rk_tickcount milliseconds of the pixel's last strong edge
    uint32_t width;             // pixels
    uint32_t height;            // pixels
    float weight;               // learning rate as last given
    uint32_t track_edges;       // not 0: rk_background_update keeps edge_model too
    uint16_t allocated;         // the arrays are allocated
    int32_t mode;               // 0 gray, 1 BGR, 2 Lab

    // For speed: what a comparison needs of the channels, a byte of mean and a byte of inverse_stdev in the byte order of an
    // image of the mode, so that it reads 2 bytes a channel instead of 32. A byte of inverse_stdev is 0 while its pixel is
    // unset. Whoever changes a channel's array by hand calls rk_background_refresh_mirror.
    uint8_t* mirror_mean;
    uint8_t* mirror_inverse;
    uint32_t mirror_misfit;  // not 0: a mean or inverse_stdev did not fit its byte, so comparisons read the channels
    float edge_weight;       // what the weights of edge_model become at the next edge update; below 0 when they are up to date
    rk_magnitude* gradients; // scratch of the edge model, width * height; null until it is first needed
};

/// A third, rounded down, of a sum of three memberships. Built by rk_background_init; process-wide, as the tables of
/// rk_distribution are.
extern uint16_t g_AvgTable[766];

// --- Life ---------------------------------------------------------------------------------------------------------

/// Releases what the record holds, and starts an empty model with a weight of 0.1 that tracks no edges. Builds the
/// process-wide tables. Returns 0 for a missing record or without memory; the model is then empty.
int rk_background_init(rk_background* background, uint32_t width, uint32_t height, int32_t mode);

/// Frees the arrays; the size becomes 0 by 0. May be called twice.
int rk_background_deinit(rk_background* background);

/// Gives the model a new size; all that was learned is lost. Without memory returns 0, and the model is 0 by 0.
int rk_background_resize(rk_background* background, uint32_t width, uint32_t height);

/// Sets the learning rate of all pixels, and the lower limit of the standard deviation back to 15 (5 for a and b of Lab).
/// A weight outside 0.0 to 1.0 is stored in the record but leaves the pixels' weights as they were; that too gives 1.
/// While no edges are tracked, the edge model takes its weight at its next update, so that its memory is not touched before.
int rk_background_set_weight(rk_background* background, float weight);

/// Marks all pixels of the region as unset: they compare as background until the next update seeds them anew. Returns 0,
/// with nothing changed, for a region that reaches out of the model.
int rk_background_reset_region(rk_background* background, rk_bbox const* region);

/// 1 if x + width and y + height of the region lie inside the model.
int rk_background_valid_region(rk_background const* background, rk_bbox const* region);

/// Copies the channels of a region inside the model into the mirror again.
int rk_background_refresh_mirror(rk_background* background, rk_bbox const* region);

// --- Learning -----------------------------------------------------------------------------------------------------

/// Learns from a frame. gray: one channel, needed in mode 0 and when track_edges is set, else it may be null.
/// colour: needed in modes 1 and 2. Both have one size, above 3 by 3; a size other than the model's starts the model
/// anew. mask: a byte per pixel; a pixel whose byte is 0 does not learn.
int rk_background_update(rk_background* background, rk_image const* gray, rk_image const* colour, uint8_t const* mask);

/// The edge half of an update alone, on a gray image of the model's size, at least 3 by 3. An edge counts when
/// |dx| + |dy| of the Sobel filter is above 200, and is forgotten after 2000 ms without one.
int rk_background_update_edges(rk_background* background, rk_image const* gray, uint8_t const* mask);

/// The scene as it looks when nothing is there: the mean of each pixel, cut to 0 to 255. image: of the model's size, one channel
/// in mode 0, else four, the last of which becomes 255. Returns 0 for another shape.
int rk_background_get_mean(rk_background const* background, rk_image* image);

// --- Comparing ----------------------------------------------------------------------------------------------------

/// Compares an image of the mode's channels with the model, all of one size. mask: one channel, or null; a pixel whose
/// byte is 0 is not compared. foreground: one channel, receives the strength, 0 for background to 255. count: receives
/// the number of pixels that differ. Returns 0, with nothing written, for shapes that do not fit; for a mode other than
/// 0, 1, 2 the outputs become 0 and so is the result.
int rk_background_compare(
    rk_background* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count);

/// The comparisons of mode 1 and mode 2 alone. Shapes are not checked. All of foreground and count is written.
/// The Lab comparison changes the model: it moves min_stdev of the chroma channels with the disturbance of the frame.
int rk_background_compare_bgr(
    rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count);
int rk_background_compare_lab(
    rk_background* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count);

/// Grades the pixels that are darker than a BGR model: near 255 for one that was darkened evenly in all three channels,
/// near 0 for one at the limit of the tolerance, and 255 for every pixel that is not graded. mask may be null. Returns 0
/// in a mode other than 1 or for shapes that do not fit.
int rk_background_compare_shadows(
    rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* shadows);

// --- Regions ------------------------------------------------------------------------------------------------------

/// Is the region part of the scene? score receives 1.0 for one smooth surface or too few edges to judge by, else the
/// share of the strong edges that agree with the edge model within `radius` pixels. mask: one channel, the size of the
/// frame; pixels whose byte is 0 are passed over. It may be null, and does not matter for a radius of at most 1.
/// mode: colour space of `colour`. Returns 1 if a score was written.
int rk_background_is_background(rk_background const* background, rk_image const* colour, rk_image const* gray,
    rk_image const* mask, rk_bbox const* region, uint32_t radius, int32_t mode, float* score);

/// 1 if the region of a colour image is smooth and not dark. mode: its colour space.
int rk_background_check_varmean(rk_image const* colour, rk_bbox const* region, int32_t mode);

/// 1 if the edge model holds an orientation within 30 degrees of `orientation` (degrees, as rk_unwrap gives them) in the
/// square from (x - radius, y - radius) up to but not including (x + radius, y + radius).
int rk_background_check_region(rk_background const* background, uint32_t orientation, uint32_t x, uint32_t y, uint32_t radius);

// --- Statistics of pixels -----------------------------------------------------------------------------------------

/// Mean and population variance. Returns 0 for no bytes.
int rk_background_varmean(uint8_t const* bytes, uint32_t count, float* variance, float* mean);

/// gray = (30 red + 59 green + 11 blue) / 100, rounded down. Both images have one size.
int rk_background_rgb_to_gray(rk_image const* colour, rk_image* gray);

float rk_background_square(float value);
