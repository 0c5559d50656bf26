#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <unistd.h>

#include <sys/ioctl.h>

#include "kit/common/error.h"

namespace zvfilter {

namespace {

std::size_t columns() {
  constexpr std::size_t usual = 80;
  winsize size{};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

}  // namespace

Progress::Progress(std::size_t total)
    : total_(total), visible_(total != 1 && ::isatty(STDERR_FILENO) == 1) {}

std::string Progress::bar(std::size_t done, std::size_t room) const {
  constexpr std::size_t most = 30, least = 5, beside = 4;
  if (room < least + beside) return "";
  const std::size_t width = std::min(most, room - beside), filled = width * done / total_;
  return kit::concat('[', std::string(filled, '#'), std::string(width - filled, '.'), "] ");
}

void Progress::clear() {
  if (visible_) std::fputs("\r\x1b[K", stderr);
  visible_ = false;
}

void Progress::show(std::size_t done, const std::string& note) {
  const Clock::time_point now = Clock::now();
  constexpr std::chrono::milliseconds pause(50);  // a terminal is slower than the filters
  if (!visible_ || (now - shown_ < pause && done != total_)) return;
  shown_ = now;
  const double rate = static_cast<double>(done) / std::chrono::duration<double>(now - start_).count();
  const std::string rated = kit::concat("  ", std::fixed, std::setprecision(1), rate, "/s");
  std::string text = kit::concat(done, " frames", rated);
  if (total_ != 0) {
    const auto left = static_cast<unsigned long>(static_cast<double>(total_ - done) / rate + 0.5);
    text = kit::concat(done, '/', total_, rated, "  ", left / 60, ':', std::setfill('0'), std::setw(2),
                       left % 60, " left", note);
    text.insert(0, bar(done, columns() - std::min(columns(), text.size())));
  }
  // A line that the terminal breaks could not be written over.
  std::fprintf(stderr, "\r%.*s\x1b[K", static_cast<int>(columns() - 1), text.c_str());
}

}  // namespace zvfilter
