/**
 * @file
 * Margin clearing: the unreliable fringe where valid depth begins beside the image borders becomes 0.
 *
 * A pixel is valid unless it is 0. In every row the first valid pixel starts a run of `margin` pixels
 * towards the right, and the last valid pixel one towards the left, when they are near their border; the
 * pixels of a run are set to 0. "Near" is not the same on both sides: the first valid pixel must lie in
 * columns 0 .. limit - 1, the last one in columns width - limit + 1 .. width - 1, one column fewer. A run
 * may go on beyond these columns; it ends with the row.
 *
 * The two-dimensional functions do the same along columns, with rows 0 .. limit_y - 1 at the top and
 * height - limit_y + 1 .. height - 1 at the bottom, save that these runs end with those rows. Rows and
 * columns are both judged by the image as it was before the call.
 *
 * Arguments that all functions share:
 * - data: `width` x `height` pixels, row after row without gaps, changed in place
 * - width, height: in pixels; below 1: nothing to do
 * - margin, margin_...: length of runs in pixels; 0 or less clears nothing
 * - limit, limit_...: in pixels, at least the margin; may be larger than the image
 *
 * All return 0, or, with nothing changed, -1 when `data` is null, -2 when a margin is larger than its
 * limit, or -3 as the function says, tested in this order and before the sides. The two-dimensional
 * functions may need 8 bytes a column for the time of the call, and return -4 when there is no memory.
 * Threads: any; calls on different images may run at the same time.
 */
#ifndef FILTERPROCESSOR_MARGIN_H
#define FILTERPROCESSOR_MARGIN_H

#include <stdint.h>

#include "filterprocessor/export.h"

FILTERPROCESSOR_BEGIN_C

/** Clears the margins of rows. */
FILTERPROCESSOR_API int32_t depth_api_horizontal_margin_filter(uint16_t* data, int32_t width,
                                                               int32_t height, int32_t margin,
                                                               int32_t limit);

/** Clears the margins of rows (`margin_x`, `limit_x`) and columns (`margin_y`, `limit_y`). */
FILTERPROCESSOR_API int32_t depth_api_margin_filter(uint16_t* data, int32_t width, int32_t height,
                                                    int32_t margin_x, int32_t margin_y, int32_t limit_x,
                                                    int32_t limit_y);

/**
 * The same with a margin for the left and one for the right that suit the image.
 *
 * Four rows, at 0.2, 0.4, 0.6 and 0.8 of the height, are sampled. Their left gaps are the columns of
 * their first valid pixels, their right gaps `width` less the columns of their last ones; a row without
 * valid pixels has a left gap of 0 and a right gap of `width`. The side whose gaps add up to more than
 * 1.2 times those of the other side gets `margin_large`, all else `margin_small`.
 *
 * @return also -3 when `margin_large` is smaller than `margin_small`
 */
FILTERPROCESSOR_API int32_t depth_api_margin_filter_asym(uint16_t* data, int32_t width, int32_t height,
                                                         int32_t margin_large, int32_t margin_small,
                                                         int32_t margin_y, int32_t limit_x,
                                                         int32_t limit_y);

/**
 * The same with margins from a table, and with the runs of rows kept inside the columns near the border.
 *
 * @param chamfer  a left and a right margin for each row, 2 x `height` entries
 * @return also -3 when `chamfer` is null
 */
FILTERPROCESSOR_API int32_t depth_api_margin_filter_with_chamfer(uint16_t* data, int32_t width,
                                                                 int32_t height, int32_t margin_y,
                                                                 int32_t limit_x, int32_t limit_y,
                                                                 const uint16_t* chamfer);

/**
 * Fills a table for depth_api_margin_filter_with_chamfer(): margins that are `base` + a corner value at
 * both ends of the table and fall along the arc of a circle to `base` between them.
 *
 * With c = radius^2 - count^2 / 4, the arc has risen at position i by e = trunc(sqrt(c + (count - i) x
 * i)) - trunc(sqrt(c)). The margins are `base` + corner - e, or `base` where e is larger than the corner
 * value. Arithmetic is in 32-bit integers that wrap around, the root of a negative number is 0, and of a
 * margin the low 16 bits are stored.
 *
 * @param chamfer        receives 2 x `count` entries
 * @param span           length in pixels of the image across the table's positions, the width
 * @param count          positions, the height; below 1: nothing to do
 * @param corner_first   corner value, in pixels, of the first margin of each pair
 * @param base           in pixels
 * @param corner_second  corner value of the second margins; 0: `corner_first`
 * @param radius         in pixels, at least half of `count`; 0: half of the larger of `span` and `count`
 * @return 0, or -1 when `chamfer` is null
 *
 * Threads: any. Allocates nothing.
 */
FILTERPROCESSOR_API int32_t depth_api_init_margin_chamfer(uint16_t* chamfer, int32_t span, int32_t count,
                                                          int32_t corner_first, int32_t base,
                                                          int32_t corner_second, int32_t radius);

FILTERPROCESSOR_END_C

#endif
