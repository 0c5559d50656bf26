#ifndef ZVFILTER_INTERRUPTION_H
#define ZVFILTER_INTERRUPTION_H

#include <array>
#include <csignal>

namespace zvfilter {

/// While it is there, SIGINT and SIGTERM ask for an end instead of being one; a second of them is.
class Interruption {
 public:
  Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption();

  static bool asked();

 private:
  std::array<struct sigaction, 2> before_;
};

}  // namespace zvfilter

#endif
