#ifndef ZVFILTER_PROGRESS_H
#define ZVFILTER_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace zvfilter {

/// A bar on standard error with the rate and the time left, when that is a terminal; it leaves with the object.
class Progress {
 public:
  /// @param total 0: it is not known
  explicit Progress(std::size_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { clear(); }
  /// @param note  a few words behind the rate
  void show(std::size_t done, const std::string& note = {});
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  /// Of the part that is done; empty where there is no room for it.
  std::string bar(std::size_t done, std::size_t room) const;

  std::size_t total_;
  bool visible_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point shown_ = {};
};

}  // namespace zvfilter

#endif
