#ifndef FILTERPROCESSOR_FRAMEWORK_ERRORS_H
#define FILTERPROCESSOR_FRAMEWORK_ERRORS_H

#include <cstdint>

#include "filterprocessor/host.h"

namespace filterprocessor {

/// Makes a host error and stores it in `*error`; the host owns it. With a null `error` the report is
/// lost. The status is 1, and the exception type 4 unless a kernel failed.
void report_error(zv_error** error, const char* message, const char* function, const char* arguments,
                  std::int32_t exception_type = ZV_EXCEPTION_INVALID_VALUE);

/// Writes the three lines of the host-error report to the console.
void print_host_error(const zv_error* error);

}  // namespace filterprocessor

#endif
