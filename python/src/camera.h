#ifndef ZVFILTER_PYTHON_CAMERA_H
#define ZVFILTER_PYTHON_CAMERA_H

#include <pybind11/pybind11.h>

namespace zvpython {

void bind_camera(pybind11::module_& module);

}  // namespace zvpython

#endif
