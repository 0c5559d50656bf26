#include "kit/common/byte_stream.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

#include "kit/common/error.h"

namespace kit {

DescriptorStream::DescriptorStream(int descriptor, std::string label)
    : descriptor_(descriptor), label_(std::move(label)), buffer_(std::size_t{1} << 16) {}

std::size_t DescriptorStream::fill(std::span<unsigned char> to) {
  for (;;) {
    const ssize_t count = ::read(descriptor_, to.data(), to.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) fail(label_, ": cannot be read: ", std::strerror(errno));
  }
}

bool DescriptorStream::at_end() {
  if (begin_ == end_) {
    begin_ = 0;
    end_ = fill(buffer_);
  }
  return begin_ == end_;
}

bool DescriptorStream::ready(int milliseconds) {
  if (begin_ < end_) return true;
  pollfd waiting{descriptor_, POLLIN, 0};
  return ::poll(&waiting, 1, milliseconds) > 0;
}

std::size_t DescriptorStream::read(std::span<unsigned char> to) {
  std::size_t done = 0;
  while (done < to.size()) {
    const std::span<unsigned char> rest = to.subspan(done);
    if (begin_ == end_ && rest.size() >= buffer_.size()) {
      const std::size_t count = fill(rest);
      if (count == 0) break;
      done += count;
      continue;
    }
    if (at_end()) break;
    const std::size_t count = std::min(rest.size(), end_ - begin_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), count, rest.begin());
    begin_ += count;
    done += count;
  }
  return done;
}

void write_all(int descriptor, const std::string& label, ByteView bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) fail(label, ": cannot be written: ", std::strerror(errno));
    bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
}

}  // namespace kit
