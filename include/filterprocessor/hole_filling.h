/**
 * @file
 * Hole filling.
 */
#ifndef FILTERPROCESSOR_HOLE_FILLING_H
#define FILTERPROCESSOR_HOLE_FILLING_H

#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/** Where a hole's value comes from. */
enum {
  DEPTH_API_HOLE_FILL_TOP = 0,     /**< the pixel above */
  DEPTH_API_HOLE_FILL_SMALLER = 1, /**< the smallest valid pixel above, below or to the left */
  DEPTH_API_HOLE_FILL_LARGER = 2   /**< the largest of them */
};

/**
 * Fills the holes (pixels of value 0) of an image from their neighbours, in place.
 *
 * Rows are filled from the top down and, in modes 1 and 2, from left to right, so a filled pixel fills
 * its successors. In modes 1 and 2 the first and last rows never change, and a hole at every eighth pixel
 * of a row, from the first on, takes the pixel to its left alone. Where there is no valid neighbour a
 * hole stays 0. In mode 1 the value 65535 counts as a hole too.
 *
 * @param depth   `width` x `height` pixels, row after row without gaps; null only when there are none
 * @param width   pixels in a row; below 1: nothing to do
 * @param height  rows; below 2 (mode 0) or 3 (modes 1 and 2): nothing to do
 * @param mode    0, 1 or 2
 * @return 0, or -1 for any other mode, with the image unchanged
 *
 * Threads: any; calls on different images may run at the same time. Allocates nothing.
 */
FILTERPROCESSOR_API int32_t depth_api_hole_filling_filter(uint16_t* depth, int32_t width, uint32_t height,
                                                          int32_t mode);

FILTERPROCESSOR_END_C

#endif
