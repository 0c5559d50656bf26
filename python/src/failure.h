#ifndef ZVFILTER_PYTHON_FAILURE_H
#define ZVFILTER_PYTHON_FAILURE_H

#include <cstdint>
#include <string>
#include <utility>

#include <pybind11/pybind11.h>

#include "kit/common/text.h"
#include "zvfilter/zvfilter.h"

namespace zvpython {

/// What the library refuses, on its way to an exception of zvfilter.errors.
struct Failure {
  zvf_error error;
};

[[noreturn]] void refuse_input(const std::string& key, const std::string& message);

/// A whole number of Python as one of C.
/// @throws std::invalid_argument, which becomes a ValueError, with the name
template <typename Integer>
Integer narrow(const char* name, std::int64_t value) {
  if (std::in_range<Integer>(value)) return static_cast<Integer>(value);
  using Limits = std::numeric_limits<Integer>;
  throw std::invalid_argument(
      kit::concat(name, " is ", value, "; expected ", +Limits::min(), " to ", +Limits::max()));
}

void translate_failures();

}  // namespace zvpython

#endif
