#include <pybind11/pybind11.h>

#include "advise.h"
#include "camera.h"
#include "chain.h"
#include "failure.h"
#include "files.h"
#include "filters.h"
#include "input.h"
#include "kernels.h"

PYBIND11_MODULE(_zvfilter, module) {
  module.doc() = "The filters, image files and kernels behind the package zvfilter.";
  zvpython::translate_failures();
  zvpython::bind_filters(module);
  zvpython::bind_input(module);
  zvpython::bind_chain(module);
  zvpython::bind_files(module);
  zvpython::bind_camera(module);
  zvpython::bind_advise(module);
  zvpython::bind_kernels(module);
}
