// A plug-in that makes no filters: it lacks zv_create_filter.
#include "filterprocessor/filter_processor.h"

extern "C" {

int32_t zv_get_filter_count() { return 1; }
const char* zv_get_filter_name(int32_t) { return "AnyFilter"; }

}  // extern "C"
