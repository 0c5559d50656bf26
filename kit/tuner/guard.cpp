#include "kit/tuner/guard.h"

#include <array>
#include <cstddef>

#include <sys/random.h>

#include "kit/common/error.h"

namespace kit::tuner {

namespace {

std::string make_token() {
  std::array<unsigned char, 16> bytes;
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    fail("the system gives no random numbers for the page's token");
  return hex_text(bytes);
}

/// In a time that says nothing of where the texts differ.
bool same(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  unsigned different = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    different |= static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]);
  return different == 0;
}

}  // namespace

Guard::Guard(int port)
    : host_(concat("127.0.0.1:", port)), origin_("http://" + host_), token_(make_token()) {}

std::string Guard::refuse_file(const Credentials& request) const {
  if (request.host != host_) return concat("Host is not ", host_);
  if (request.origin && *request.origin != origin_) return concat("Origin is not ", origin_);
  return "";
}

std::string Guard::refuse_call(const Credentials& request) const {
  if (std::string problem = refuse_file(request); !problem.empty()) return problem;
  if (!request.origin) return concat("there is no Origin; expected ", origin_);
  if (!request.token)
    return concat("there is no ", kTokenHeader, "; it is in the address that was printed");
  if (!same(*request.token, token_)) return concat(kTokenHeader, " is not that of the address");
  return "";
}

const std::vector<std::pair<std::string, std::string>>& protective_headers() {
  static const std::vector<std::pair<std::string, std::string>> headers = {
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src "
       "'self'; "
       "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
      {"X-Content-Type-Options", "nosniff"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cache-Control", "no-store"}};
  return headers;
}

}  // namespace kit::tuner
