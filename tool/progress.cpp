#include "progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace zvfilter {

Progress::Progress(std::size_t total)
    : total_(total), visible_(total > 1 && ::isatty(STDERR_FILENO) == 1) {}

void Progress::clear() {
  if (visible_) std::fputs("\r\x1b[K", stderr);
  visible_ = false;
}

void Progress::show(std::size_t done) {
  if (!visible_) return;
  constexpr std::size_t width = 40;
  const std::size_t filled = width * done / total_;
  const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
  std::fprintf(stderr, "\r[%s] %zu/%zu", bar.c_str(), done, total_);
}

}  // namespace zvfilter
