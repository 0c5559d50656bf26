#ifndef ZVFILTER_FAILURE_H
#define ZVFILTER_FAILURE_H

#include <stdexcept>
#include <string>

namespace zvfilter {

/// Ends the program: one line for standard error, without the program's name, and the exit status.
class Failure : public std::runtime_error {
 public:
  static constexpr int kRun = 1;    ///< something went wrong while doing what was asked
  static constexpr int kUsage = 2;  ///< what was asked makes no sense

  Failure(int status, const std::string& line) : std::runtime_error(line), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

[[noreturn]] inline void fail_run(const std::string& line) { throw Failure(Failure::kRun, line); }
[[noreturn]] inline void fail_usage(const std::string& line) { throw Failure(Failure::kUsage, line); }

}  // namespace zvfilter

#endif
