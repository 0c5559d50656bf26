#ifndef KIT_IMAGE_TIFF_H
#define KIT_IMAGE_TIFF_H

#include <functional>
#include <memory>

#include "kit/common/files.h"
#include "kit/image/image.h"

namespace kit {

/// Bytes that are read and written where the format wants it. What these throw reaches the caller of what uses them.
struct RandomAccess {
  std::function<std::size_t(std::uint64_t offset, std::span<unsigned char> to)> read;
  std::function<void(std::uint64_t offset, ByteView bytes)> write;  ///< none: only read
  std::function<std::uint64_t()> size;
};

/// Bytes in memory, to be read.
RandomAccess view_of(ByteView file);

/// The images of a TIFF file: one on each of its pages. All throw Error.
class TiffReader {
 public:
  explicit TiffReader(RandomAccess file);
  ~TiffReader();

  /// Where its pages begin, which is all that read_page() needs to know.
  std::vector<std::uint64_t> pages();
  Image read_page(std::uint64_t page);
  Image read_first_page();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// A TIFF file that grows by a page for each image.
class TiffWriter {
 public:
  /// @param large whether the file may become larger than 4 GiB
  TiffWriter(RandomAccess file, bool large);
  ~TiffWriter();
  void write_page(const ImageView& image);
  void finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kit

#endif
