#include "failure.h"

#include <cstdio>

#include "kit/common/error.h"

namespace py = pybind11;

namespace zvpython {

namespace {

void raise(zvf_code code, int step, const char* tag, const char* key, const char* message) {
  const py::object error = py::module_::import("zvfilter.errors")
                               .attr("error_of")(static_cast<int>(code), step, tag, key, message);
  PyErr_SetObject(py::type::of(error).ptr(), error.ptr());
}

}  // namespace

void refuse_input(const std::string& key, const std::string& message) {
  Failure failure = {{ZVF_BAD_INPUT, -1, "", "", ""}};
  std::snprintf(failure.error.key, sizeof failure.error.key, "%s", key.c_str());
  std::snprintf(failure.error.message, sizeof failure.error.message, "%s", message.c_str());
  throw failure;
}

void translate_failures() {
  py::register_local_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const Failure& failure) {
      const zvf_error& error = failure.error;
      raise(error.code, error.step, error.tag, error.key, error.message);
    } catch (const kit::Error& error) {
      // Without the library only files are read and written, and frames advised on.
      const bool bad_request = error.kind() == kit::Error::Kind::bad_request;
      const kit::Place& place = error.place();
      raise(bad_request ? ZVF_BAD_ARGUMENT : ZVF_NO_FILE, place.step, place.tag.c_str(),
            place.key.c_str(), error.what());
    }
  });
}

}  // namespace zvpython
