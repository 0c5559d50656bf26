#ifndef KIT_COMMON_ERROR_H
#define KIT_COMMON_ERROR_H

#include <stdexcept>
#include <string>

#include "kit/common/text.h"

namespace kit {

/// What the kit throws: one line that says what is wrong and what would be right. It may quote names and files, so it is
/// made printable here, once for all.
class Error : public std::runtime_error {
 public:
  enum class Kind {
    bad_request,  ///< what was asked makes no sense
    failed_run,   ///< something went wrong while doing what was asked
  };

  Error(Kind kind, const std::string& line) : std::runtime_error(printable(line)), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

template <typename... Parts>
[[noreturn]] void refuse(const Parts&... parts) {
  throw Error(Error::Kind::bad_request, concat(parts...));
}
template <typename... Parts>
[[noreturn]] void fail(const Parts&... parts) {
  throw Error(Error::Kind::failed_run, concat(parts...));
}

}  // namespace kit

#endif
