#ifndef ZVFILTER_PYTHON_FILES_H
#define ZVFILTER_PYTHON_FILES_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_files(pybind11::module_& module);

}  // namespace zvpython

#endif
