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

void Progress::show(std::size_t done, const std::string& note) {
  const Clock::time_point now = Clock::now();
  constexpr std::chrono::milliseconds pause(50);  // a terminal is slower than the filters
  if (!visible_ || (now - shown_ < pause && done < total_)) return;
  shown_ = now;
  constexpr std::size_t width = 30;
  const std::size_t filled = width * done / total_;
  const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
  const double rate = static_cast<double>(done) / std::chrono::duration<double>(now - start_).count();
  const auto left = static_cast<unsigned long>(static_cast<double>(total_ - done) / rate + 0.5);
  std::fprintf(stderr, "\r[%s] %zu/%zu  %.1f/s  %lu:%02lu left%s\x1b[K", bar.c_str(), done, total_, rate,
               left / 60, left % 60, note.c_str());
}

}  // namespace zvfilter
