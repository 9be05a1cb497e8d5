#pragma once

struct rk_bbox;
struct rk_image;

/// Erosion and dilation by a square of 3 by 3, as two passes of three: bitwise AND (erosion) or OR (dilation) of a pixel with
/// those above and below it into scratch, then of those with their left and right neighbours into target. On images of 0 and 255
/// this is the usual binary operation.
///
/// source, target and scratch have one channel and the same size in bytes; source and target may be one image, scratch is
/// another. The outer rows and columns of target are not written. Images of less than 3 rows stay as they are, with success.
/// Returns 0, and changes nothing, when the images do not fit together.
int rk_erode_image(rk_image const* source, rk_image* target, rk_image* scratch);
int rk_dilate_image(rk_image const* source, rk_image* target, rk_image* scratch);

/// The same on a rectangle of the image, or on all of it when region is null. target has the size in bytes of source, scratch
/// exactly the rectangle's width and height. The rectangle's outer ring takes the pixels of source unchanged, and the first pass
/// leaves it out as well, so pixels next to it see its plain bytes in the second. Pixels outside of the rectangle stay.
int rk_erode_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region);
int rk_dilate_image_roi(rk_image const* source, rk_image* target, rk_image* scratch, rk_bbox const* region);

/// One step of rk_morphology.
enum rk_morphology_step { rk_step_erode, rk_step_dilate };

/// What rk_erode_image and rk_dilate_image give when they are applied to an image in place, one step after the other. What
/// scratch holds afterwards is undefined. An image of 0 and 255 only goes through all steps as one bit a pixel. Returns the
/// number of steps done, which is less than count when the images do not fit together.
int rk_morphology(rk_image* image, rk_image* scratch, rk_morphology_step const* steps, int count);
