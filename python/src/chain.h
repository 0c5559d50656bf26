#ifndef ZVFILTER_PYTHON_CHAIN_H
#define ZVFILTER_PYTHON_CHAIN_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_chain(pybind11::module_& module);

}  // namespace zvpython

#endif
