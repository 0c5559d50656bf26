#ifndef ZVFILTER_PYTHON_FILTERS_H
#define ZVFILTER_PYTHON_FILTERS_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_filters(pybind11::module_& module);

}  // namespace zvpython

#endif
