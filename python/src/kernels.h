#ifndef ZVFILTER_PYTHON_KERNELS_H
#define ZVFILTER_PYTHON_KERNELS_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_kernels(pybind11::module_& module);

}  // namespace zvpython

#endif
