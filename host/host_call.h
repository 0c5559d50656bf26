#ifndef HOST_HOST_CALL_H
#define HOST_HOST_CALL_H

#include <cstdint>

#include "filterprocessor/host.h"

namespace hosts {

/// One call of a host function: refuses null objects and says what fails.
/// `make_error(message, function, arguments, exception type)` makes the errors of the host.
template <auto make_error>
class HostCall {
 public:
  HostCall(const char* function, zv_error** error) : function_(function), error_(error) {}
  template <typename Object>
  HostCall& needs(const Object* object, const char* name) {
    if (!failed_ && object == nullptr) fail("null pointer", name, ZV_EXCEPTION_INVALID_VALUE);
    return *this;
  }
  void fail(const char* message, const char* args, std::int32_t exception_type) {
    failed_ = true;
    zv_error* created = make_error(message, function_, args, exception_type);
    if (error_ != nullptr) *error_ = created;
  }
  explicit operator bool() const { return !failed_; }

 private:
  const char* function_;
  zv_error** error_;
  bool failed_ = false;
};

}  // namespace hosts

#endif
