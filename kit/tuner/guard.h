#ifndef KIT_TUNER_GUARD_H
#define KIT_TUNER_GUARD_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kit::tuner {

inline constexpr const char* kTokenHeader = "X-Tuner-Token";

/// What of a request says where it comes from. A header that is not there is nothing, one that is there twice is its values in one.
struct Credentials {
  std::optional<std::string> host;
  std::optional<std::string> origin;
  std::optional<std::string> token;
};

/// Keeps others than the page of the printed address away: other pages of the browser, names that lead to this machine, and
/// programs that have not been told the token. For any thread.
class Guard {
 public:
  /// Makes a token.
  /// @throws Error when the system has no random numbers
  explicit Guard(int port);

  /// What is wrong with a request for the page's own files, which hold nothing of the user's; empty: nothing.
  std::string refuse_file(const Credentials& request) const;
  /// The same for a request that reads or changes something.
  std::string refuse_call(const Credentials& request) const;

  /// "http://127.0.0.1:8123"
  const std::string& origin() const { return origin_; }
  /// The address of the page, with the token where no server and no other page sees it.
  std::string address() const { return origin_ + "/#token=" + token_; }

 private:
  std::string host_, origin_, token_;
};

/// Headers that every answer carries.
const std::vector<std::pair<std::string, std::string>>& protective_headers();

}  // namespace kit::tuner

#endif
