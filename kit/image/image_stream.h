#ifndef KIT_IMAGE_IMAGE_STREAM_H
#define KIT_IMAGE_IMAGE_STREAM_H

#include <optional>
#include <string>

#include "kit/image/codec.h"

namespace kit {

/// Images that come one after the other until their stream ends: raw samples, PGM files or NumPy files, of which each may be
/// a stack.
class ImageStreamReader {
 public:
  /// @param codec has a header
  /// @param label of the stream in messages
  ImageStreamReader(ByteStream& stream, const Codec& codec, const ReadOptions& options,
                    std::string label);

  /// Nothing at the end.
  /// @throws Error, which names the frame, also for one that is not whole
  std::optional<Image> next();
  std::size_t count() const { return count_; }

 private:
  std::optional<Image> read_next();

  ByteStream& stream_;
  const Codec& codec_;
  ReadOptions options_;
  std::string label_;
  SampleLayout layout_;
  std::uint64_t left_ = 0;  // images behind the last header
  std::size_t count_ = 0;
};

/// The image as such a stream carries it.
Bytes encode_for_stream(const Codec& codec, const ImageView& image, ByteOrder raw_order);

}  // namespace kit

#endif
