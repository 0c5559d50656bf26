#ifndef KIT_COMMON_BYTE_STREAM_H
#define KIT_COMMON_BYTE_STREAM_H

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "kit/common/files.h"

namespace kit {

/// Bytes that come one after the other.
class ByteStream {
 public:
  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  virtual ~ByteStream() = default;
  /// @return how many bytes there were; fewer than asked for only at the end
  /// @throws Error
  virtual std::size_t read(std::span<unsigned char> to) = 0;
  virtual bool at_end() = 0;

  std::optional<unsigned char> next() {
    unsigned char byte = 0;
    return read({&byte, 1}) == 1 ? std::optional(byte) : std::nullopt;
  }
};

/// Takes bytes off the front of a view.
class ViewStream final : public ByteStream {
 public:
  explicit ViewStream(ByteView bytes) : rest_(bytes) {}
  std::size_t read(std::span<unsigned char> to) override {
    const std::size_t count = std::min(to.size(), rest_.size());
    std::copy_n(rest_.begin(), count, to.begin());
    rest_ = rest_.subspan(count);
    return count;
  }
  bool at_end() override { return rest_.empty(); }
  ByteView rest() const { return rest_; }

 private:
  ByteView rest_;
};

/// A file from its start.
class FileStream final : public ByteStream {
 public:
  explicit FileStream(const ReadableFile& file) : file_(file) {}
  std::size_t read(std::span<unsigned char> to) override {
    const std::size_t count = file_.read_at(position_, to);
    position_ += count;
    return count;
  }
  bool at_end() override { return position_ >= file_.size(); }
  std::uint64_t position() const { return position_; }

 private:
  const ReadableFile& file_;
  std::uint64_t position_ = 0;
};

/// An open file or pipe that somebody else closes.
class DescriptorStream final : public ByteStream {
 public:
  /// @param label of the file in messages
  DescriptorStream(int descriptor, std::string label);
  std::size_t read(std::span<unsigned char> to) override;
  bool at_end() override;
  /// Waits so long. @return whether there is something to read, be it the end
  bool ready(int milliseconds);

 private:
  std::size_t fill(std::span<unsigned char> to);

  int descriptor_;
  std::string label_;
  Bytes buffer_;
  std::size_t begin_ = 0, end_ = 0;
};

/// @throws Error
void write_all(int descriptor, const std::string& label, ByteView bytes);

}  // namespace kit

#endif
