/**
 * @file
 * Speckle removal: small connected regions of similar values become invalid.
 *
 * A region grows from its first pixel (rows from the top down, columns from left to right) over
 * 4-connected pixels that belong to no earlier region. A neighbour joins when it is not `invalid_value`
 * and differs from the pixel next to it that is already inside by no more than a threshold: `max_diff`,
 * or the entry of a depth-diff table for the value of the pixel already inside. A region of at most
 * `max_size` pixels is set to `invalid_value`; a limit below 1 removes nothing.
 *
 * The pyramid forms do the same on the lattice of pixels with odd row and odd column, whose neighbours
 * lie two pixels apart, so that a region counts a quarter of its pixels. Each lattice pixel stands for
 * the block of itself and the pixels to its left, above and above left: where it is invalid or removed
 * the block becomes invalid, elsewhere those of the three that differ from it by more than the threshold
 * take its value. The last row of an odd height and the last column of an odd width do not change.
 *
 * Parameters that all functions share:
 * - `buffer`: at least 9 x `width` x `height` bytes of any alignment, for the call's own use; their
 * content afterwards is unspecified.
 * - `depth`: `width` x `height` pixels, row after row without gaps, changed in place.
 * - `width`, `height`: 1 (pyramid forms: 2) to 32767; otherwise nothing is touched, the buffer included.
 * - `diff_lut`, `lut_shift`, `lut_size`: the table's `lut_size` entries. A value v uses entry i, the low
 * 8 bits of v >> `lut_shift`, or the last entry when there is no entry i. A table that is null or has no
 * entries stands for thresholds of 0.
 * - `max_diff`: largest difference that joins; below 0 nothing joins.
 * - `max_size_map`, `map_cols`, `map_rows`: limits for the cells of a grid, row after row. Cells have
 * `width` / `map_cols` by `height` / `map_rows` pixels (integer quotients), and a region's limit is that
 * of the cell with its first pixel, or the map's last entry for a cell past the map's end. Without a map,
 * or with fewer than 1 or more columns or rows than the image has, nothing is touched.
 *
 * Pointers may be null only where nothing is touched. Threads: any; calls with different images and
 * buffers may run at the same time. Nothing is allocated and nothing is kept between calls.
 */
#ifndef FILTERPROCESSOR_SPECKLE_H
#define FILTERPROCESSOR_SPECKLE_H

#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/**
 * Default limits, in lattice pixels (480 also in pixels of the full-resolution form), for calls of
 * depth_api_softfilter() whose `max_size` is too small. A host may write them while no call runs.
 */
/** @{ */
FILTERPROCESSOR_API extern int32_t Depth_MaxSpeckleSize_160x120;  /**< 30 */
FILTERPROCESSOR_API extern int32_t Depth_MaxSpeckleSize_320x240;  /**< 120 */
FILTERPROCESSOR_API extern int32_t Depth_MaxSpeckleSize_640x480;  /**< 480 */
FILTERPROCESSOR_API extern int32_t Depth_MaxSpeckleSize_1280x960; /**< 1920 */
/** @} */

/** 16; for hosts, no function reads it. */
FILTERPROCESSOR_API extern int32_t Depth_MaxDiff;

/**
 * Removes speckles with the form that suits the image's size.
 *
 * With a fixed limit the pyramid form runs when width or height is 1280, 640, 320 or 160, tested in this
 * order, or the width is 424 or the height 266. Its limit is `max_size` / 4, or, when `max_size` is below
 * 4, the default of 1280x960, 640x480, 320x240, 160x120 and, for 424 and 266, a quarter of that of
 * 640x480. Other sizes run the full-resolution form with `max_size`, or the default of 640x480 when it is
 * below 1.
 *
 * With a map the pyramid form runs when width or height is 1280 or 640; limits are used as they stand.
 *
 * @param max_size_map  read only when `fixed_size` is 0
 * @param diff_lut      read only when `lut_size` is not 0
 * @param lut_size      0: the threshold is `max_diff`
 * @param fixed_size    0: limits from the map; otherwise one limit for all regions
 * @return 0
 */
FILTERPROCESSOR_API int32_t depth_api_softfilter(uint8_t* buffer, uint16_t* depth, uint16_t* max_size_map,
                                                 int32_t width, int32_t height, uint16_t* diff_lut,
                                                 uint8_t lut_shift, uint8_t lut_size, int32_t max_diff,
                                                 int32_t max_size, int32_t map_cols, int32_t map_rows,
                                                 uint16_t invalid_value, int32_t fixed_size);

/** Pyramid form, fixed threshold. @param max_size limit in lattice pixels */
FILTERPROCESSOR_API void softfilterPyramid(uint8_t* buffer, uint16_t* depth, int32_t width,
                                           int32_t height, int32_t max_diff, int32_t max_size,
                                           uint16_t invalid_value);

/** Pyramid form, thresholds from a table. @param max_size limit in lattice pixels */
FILTERPROCESSOR_API void softfilterPyramid_lut(uint8_t* buffer, uint16_t* depth, int32_t width,
                                               int32_t height, uint16_t* diff_lut, uint8_t lut_shift,
                                               uint8_t lut_size, int32_t max_size,
                                               uint16_t invalid_value);

/** Pyramid form, fixed threshold, limits in lattice pixels from a map. */
FILTERPROCESSOR_API void filterSpecklePyramid(uint8_t* buffer, uint16_t* depth, uint16_t* max_size_map,
                                              int32_t width, int32_t height, int32_t max_diff,
                                              int32_t map_cols, int32_t map_rows, uint16_t invalid_value);

/** Pyramid form, thresholds from a table, limits in lattice pixels from a map. */
FILTERPROCESSOR_API void filterSpecklePyramid_lut(uint8_t* buffer, uint16_t* depth,
                                                  uint16_t* max_size_map, int32_t width, int32_t height,
                                                  uint16_t* diff_lut, uint8_t lut_shift, uint8_t lut_size,
                                                  int32_t map_cols, int32_t map_rows,
                                                  uint16_t invalid_value);

/** Full-resolution form, fixed threshold. @param max_size limit in pixels */
FILTERPROCESSOR_API void Softfilter_new(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height,
                                        int32_t max_diff, int32_t max_size, uint16_t invalid_value);

/**
 * Copies the pixels with odd row and odd column to an image of half the size.
 *
 * @param src     `width` x `height` pixels
 * @param dst     receives (`width` / 2) x (`height` / 2) pixels, row after row; does not overlap `src`
 * @param width   below 2 or above 32767: nothing to do
 * @param height  the same
 */
FILTERPROCESSOR_API void downSample(const uint16_t* src, uint16_t* dst, int32_t width, int32_t height);

/**
 * Carries the removals of a half-size image back to the full image; 0 is invalid.
 *
 * Half pixel s owns the block of full pixels A B over C D, whose D it was copied from. In the first and
 * last half rows A, B and C take s where they differ from it by more than `max_diff` or s is 0, and D
 * takes s. In the other half rows, from the second half pixel on, a nonzero pixel is set to 0 when it
 * differs by more than `max_diff` from s and from its other neighbours in the half image (A: above and
 * left, B: above, C: left); a nonzero D that differs from s by more takes s.
 *
 * @param full         (2 x `half_width`) x (2 x `half_height`) pixels, changed in place
 * @param half         `half_width` x `half_height` pixels
 * @param half_width   below 1 or above 32767: nothing to do
 * @param half_height  the same
 */
FILTERPROCESSOR_API void upSample_new(uint16_t* full, const uint16_t* half, int32_t half_width,
                                      int32_t half_height, int32_t max_diff);

/**
 * Half-resolution form: downSample() into the buffer, Softfilter_new() there, upSample_new() back. The
 * last row of an odd height and the last column of an odd width do not change.
 *
 * @param max_size  limit in half-size pixels
 * @param width     2 to 32767; otherwise nothing is touched
 * @param height    the same
 */
FILTERPROCESSOR_API void softfilterOpt(uint8_t* buffer, uint16_t* depth, int32_t width, int32_t height,
                                       int32_t max_diff, int32_t max_size, uint16_t invalid_value);

FILTERPROCESSOR_END_C

#endif
