#ifndef ZVFILTER_PYTHON_ADVISE_H
#define ZVFILTER_PYTHON_ADVISE_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_advise(pybind11::module_& module);

}  // namespace zvpython

#endif
