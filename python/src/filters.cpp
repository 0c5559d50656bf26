#include "filters.h"

#include <pybind11/stl.h>

#include "zvfilter/zvfilter.h"

namespace py = pybind11;

namespace zvpython {

namespace {

py::list parameters_of(std::size_t filter) {
  py::list parameters;
  zvf_parameter p;
  for (std::size_t i = 0; zvf_parameter_at(filter, i, &p); ++i)
    parameters.append(py::make_tuple(p.name, p.type, p.min, p.max, p.default_value, p.description));
  return parameters;
}

}  // namespace

void bind_filters(py::module_& module) {
  py::list filters;
  for (std::size_t i = 0; i < zvf_filter_count(); ++i)
    filters.append(py::make_tuple(zvf_filter_name(i), parameters_of(i)));
  module.attr("filters") = filters;
  module.attr("version") = zvf_version();
  module.def("level", &zvf_level);
  module.def("chain_file_schema", &zvf_chain_file_schema);
}

}  // namespace zvpython
