#include "filterprocessor/level.h"

#include "kernels/kernel_set.h"

const char* depth_api_level() { return filterprocessor::active_kernels().level; }
