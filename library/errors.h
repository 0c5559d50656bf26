#ifndef ZVFILTER_LIBRARY_ERRORS_H
#define ZVFILTER_LIBRARY_ERRORS_H

#include <new>

#include "kit/common/error.h"
#include "zvfilter/zvfilter.h"

namespace zvfilter {

/// What the kinds of kit::Error are called in a function.
struct Codes {
  zvf_code bad_request;
  zvf_code failed_run;
};

zvf_code report(zvf_error* error, zvf_code code, const char* message, const kit::Place& place = {});

/// Does the work of a function that returns a code; nothing is thrown past it.
template <typename Work>
zvf_code guarded(zvf_error* error, const Codes& codes, const Work& work) noexcept {
  try {
    work();
    return ZVF_OK;
  } catch (const kit::Error& problem) {
    const bool bad_request = problem.kind() == kit::Error::Kind::bad_request;
    return report(error, bad_request ? codes.bad_request : codes.failed_run, problem.what(),
                  problem.place());
  } catch (const std::bad_alloc&) {
    return report(error, ZVF_NO_MEMORY, "out of memory");
  } catch (const std::exception& problem) {
    return report(error, codes.failed_run, problem.what());
  }
}

}  // namespace zvfilter

#endif
