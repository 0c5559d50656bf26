#include "framework/errors.h"

#include <cstdio>

#include "console/console.h"

namespace filterprocessor {

namespace {
const char* text_or_empty(const char* text) { return text != nullptr ? text : ""; }
}  // namespace

void report_error(zv_error** error, const char* message, const char* function, const char* arguments,
                  std::int32_t exception_type) {
  zv_error* created = zv_create_error(1, message, function, arguments, exception_type);
  if (error != nullptr) *error = created;
}

void print_host_error(const zv_error* error) {
  std::FILE* const out = console_output();
  if (out == nullptr) return;
  std::fprintf(out, "zv_error was raised: \n\tcall: %s(%s)\n",
               text_or_empty(zv_error_get_function(error)), text_or_empty(zv_error_get_args(error)));
  std::fprintf(out, "\tmessage: %s\n", text_or_empty(zv_error_get_message(error)));
  std::fprintf(out, "\terror type: %d\n", zv_error_get_exception_type(error));
}

}  // namespace filterprocessor
