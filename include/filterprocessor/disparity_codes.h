/**
 * @file
 * The codes of disparity frames that stand for no disparity.
 */
#ifndef FILTERPROCESSOR_DISPARITY_CODES_H
#define FILTERPROCESSOR_DISPARITY_CODES_H

enum {
  ZV_DISPARITY_CODE_MAX = 65531, /**< larger ones are marks */
  ZV_DISPARITY_UNMATCHED =
      65532, /**< what one camera gives in pack mode 4 to pixels it could not match */
  ZV_DISPARITY_UNMATCHED_SIGNED =
      8192, /**< the same in the other pack modes: the smallest 14-bit number */
};

#endif
