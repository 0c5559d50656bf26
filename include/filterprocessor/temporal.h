/**
 * @file
 * Temporal smoothing.
 */
#ifndef FILTERPROCESSOR_TEMPORAL_H
#define FILTERPROCESSOR_TEMPORAL_H

#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/**
 * Blends every pixel c of a frame with the last output p at its place and remembers the result.
 *
 * Where both are non-zero and |c - p| < min(p, c) x `diff_scale`, the result is p x (1 - `weight`) + c x
 * `weight`, truncated; elsewhere it is c. `depth` and `history` both receive it. All arithmetic is in
 * 32-bit floats with every operation rounded, save that 64-bit Arm adds c x `weight` unrounded. A blend
 * that leaves the range of a pixel, which takes a `weight` outside 0..1, gives 0 when negative or not a
 * number and otherwise the low 16 bits of the integer, at most 2^31 - 1.
 *
 * @param depth       `width` x `height` pixels; 0 is invalid
 * @param width       pixels in a row; below 1: nothing to do
 * @param height      rows; below 1: nothing to do
 * @param history     the last output, of the same size, or all 0 before the first frame; either `depth`
 *                    itself or apart from it; null: `depth`
 * @param diff_scale  largest accepted change, as a fraction of the smaller value
 * @param weight      weight of the current frame, 0..1
 * @return 0
 *
 * Threads: any; calls on different images and histories may run at the same time. Allocates nothing.
 */
FILTERPROCESSOR_API int32_t depth_api_temporal_filter(uint16_t* depth, int32_t width, int32_t height,
                                                      uint16_t* history, float diff_scale, float weight);

FILTERPROCESSOR_END_C

#endif
