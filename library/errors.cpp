#include "errors.h"

#include <cstdio>

namespace zvfilter {

namespace {

template <std::size_t size>
void copy_text(char (&to)[size], const char* text) {
  std::snprintf(to, size, "%s", text);
}

}  // namespace

zvf_code report(zvf_error* error, zvf_code code, const char* message, const kit::Place& place) {
  if (error == nullptr) return code;
  error->code = code;
  error->step = place.step;
  copy_text(error->tag, place.tag.c_str());
  copy_text(error->key, place.key.c_str());
  copy_text(error->message, message);
  return code;
}

}  // namespace zvfilter
