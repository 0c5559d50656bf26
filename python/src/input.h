#ifndef ZVFILTER_PYTHON_INPUT_H
#define ZVFILTER_PYTHON_INPUT_H

#include <pybind11/pybind11.h>

#include "kit/input/input.h"
#include "zvfilter/zvfilter.h"

namespace zvpython {

/// The fields of zvfilter.Input; what is missing or None is not known. The size is 0 x 0: it is the frame's.
/// @throws Failure
zvf_input read_input(const pybind11::dict& fields);
pybind11::dict input_fields(const zvf_input& input);

/// Between the library's record and the kit's; neither has a size.
zvf_input input_record(kit::Input input);
kit::Input kit_input(zvf_input input);

void bind_input(pybind11::module_& module);

}  // namespace zvpython

#endif
