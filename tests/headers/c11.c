/* Every public header is a C11 header. */
#include "filterprocessor/filter_processor.h"
#include "filterprocessor/hole_filling.h"
#include "filterprocessor/host.h"
#include "filterprocessor/margin.h"
#include "filterprocessor/spatial.h"
#include "filterprocessor/speckle.h"
#include "filterprocessor/temporal.h"

int headers_are_c11(void);
int headers_are_c11(void) {
  PrivFilterContext* context = zv_create_filter(0);
  zv_priv_filter_context_destroy(context);
  return depth_api_hole_filling_filter(0, 0, 0, DEPTH_API_HOLE_FILL_TOP);
}
