/**
 * @file
 * Edge-preserving recursive smoothing.
 *
 * Every pass visits pixels in order and blends each with its already written neighbour where both are
 * valid and differ by less than a threshold, so edges survive and surfaces become smooth. The horizontal
 * pair of passes (left to right, then right to left) also closes short runs of invalid pixels; the
 * vertical pair is top to bottom, then bottom to top. The horizontal thresholds are inclusive, the
 * vertical ones exclusive.
 *
 * Horizontal passes leave the last `height` mod 8 rows as they are, vertical passes the last `width` mod
 * 8 columns, and the pass to the right leaves the last column.
 *
 * What depends on the processor family:
 * - x86 (and any other but 64-bit Arm): a pixel is valid from 1 to 32767; thresholds are read as signed
 *   16-bit numbers; the blend is (1 - alpha) x neighbour + alpha x pixel in 32-bit floats, rounded to the
 *   nearest integer, ties to even.
 * - 64-bit Arm: a pixel is valid unless it is 0; thresholds are unsigned; the blend is half the sum
 *   modulo 65536, truncated, whatever `alpha`.
 *
 * Arguments that all functions share:
 * - data: `width` x `height` pixels, row after row without gaps, filtered in place
 * - lut: `lut_size` thresholds; a pixel uses entry (value >> lut_shift) mod 256, the last one when that
 *   is past the end. A shift of 16 or more selects entry 0. No entries, or a null `lut`: every threshold
 *   is 0.
 * - disp_diff: the fixed threshold, truncated toward zero; its low 16 bits count
 * - magnitude: iterations, at least 1
 * - radius: of a run of invalid pixels the horizontal passes fill radius - 1 from each side
 * - horizontal, vertical: which pairs of passes run, each 0 or 1 and not both 0
 * - alpha: weight of the pixel itself against its neighbour, 0..1; with a NaN the pixels are unspecified
 *
 * All return 0, or -1 with the image unchanged when a flag, `alpha`, `data` (null) or `magnitude` is out
 * of its range. Threads: any; calls on different images may run at the same time. They allocate nothing.
 */
#ifndef FILTERPROCESSOR_SPATIAL_H
#define FILTERPROCESSOR_SPATIAL_H

#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/** Smooths with the table, or with `disp_diff` when `lut_size` is 0. */
FILTERPROCESSOR_API int32_t depth_api_spatial_filter(uint16_t* data, uint16_t width, uint16_t height,
                                                     const uint16_t* lut, uint8_t lut_shift,
                                                     uint8_t lut_size, int32_t magnitude, uint8_t radius,
                                                     uint8_t horizontal, uint8_t vertical, float alpha,
                                                     float disp_diff);

/** Smooths with `disp_diff`, always in one iteration; `magnitude` is only checked. */
FILTERPROCESSOR_API int32_t depth_api_spatial_filter_origin(uint16_t* data, uint16_t width,
                                                            uint16_t height, int32_t magnitude,
                                                            uint8_t radius, uint8_t horizontal,
                                                            uint8_t vertical, float alpha,
                                                            float disp_diff);

/** Smooths with the table. */
FILTERPROCESSOR_API int32_t depth_api_spatial_filter_origin_lut(uint16_t* data, uint16_t width,
                                                                uint16_t height, const uint16_t* lut,
                                                                uint8_t lut_shift, uint8_t lut_size,
                                                                int32_t magnitude, uint8_t radius,
                                                                uint8_t horizontal, uint8_t vertical,
                                                                float alpha);

FILTERPROCESSOR_END_C

#endif
