#ifndef ZVFILTER_PROGRESS_H
#define ZVFILTER_PROGRESS_H

#include <cstddef>

namespace zvfilter {

/// A bar on standard error, when that is a terminal; it leaves with the object.
class Progress {
 public:
  explicit Progress(std::size_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { clear(); }
  void show(std::size_t done);
  void clear();

 private:
  std::size_t total_;
  bool visible_;
};

}  // namespace zvfilter

#endif
