#ifndef FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_PLAIN_H
#define FILTERPROCESSOR_KERNELS_MARGIN_MARGIN_PLAIN_H

#include "kernels/margin/margin.h"

namespace filterprocessor::plain {

MarginKernels::Clear clear_margins;

inline constexpr MarginKernels margin = {clear_margins};

}  // namespace filterprocessor::plain

#endif
