#ifndef KIT_COMMON_ERROR_H
#define KIT_COMMON_ERROR_H

#include <stdexcept>
#include <string>
#include <utility>

#include "kit/common/text.h"

namespace kit {

/// What a complaint is about, where it is about a step of a chain or a value.
struct Place {
  int step = -1;    ///< from 0
  std::string tag;  ///< or filter
  std::string key;
};

/// What the kit throws: one line that says what is wrong and what would be right. It may quote names and files, so it is
/// made printable here, once for all.
class Error : public std::runtime_error {
 public:
  enum class Kind {
    bad_request,  ///< what was asked makes no sense
    failed_run,   ///< something went wrong while doing what was asked
  };

  Error(Kind kind, const std::string& line, Place place = {})
      : std::runtime_error(printable(line)), kind_(kind), place_(std::move(place)) {}
  Kind kind() const { return kind_; }
  const Place& place() const { return place_; }

 private:
  Kind kind_;
  Place place_;
};

template <typename... Parts>
[[noreturn]] void refuse(const Parts&... parts) {
  throw Error(Error::Kind::bad_request, concat(parts...));
}
/// The same about a value.
template <typename... Parts>
[[noreturn]] void refuse_key(const std::string& key, const Parts&... parts) {
  throw Error(Error::Kind::bad_request, concat(parts...), {-1, "", key});
}
template <typename... Parts>
[[noreturn]] void fail(const Parts&... parts) {
  throw Error(Error::Kind::failed_run, concat(parts...));
}

}  // namespace kit

#endif
