#ifndef KIT_IMAGE_IMAGE_FILE_H
#define KIT_IMAGE_IMAGE_FILE_H

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "kit/image/codec.h"

namespace kit {

class TiffWriter;

/// The format that the name says; null for none.
const Codec* codec_of(const std::filesystem::path& file);

/// A file with one image or, where it is a stack, several. Any of them may be read by any thread.
class ImageFile {
 public:
  /// Looks as far as it takes to know how many images there are; of PNG and PGM files, at nothing.
  /// @param file of a known format
  /// @throws Error, which names the file
  ImageFile(const std::filesystem::path& file, const ReadOptions& options);

  const std::filesystem::path& path() const { return path_; }
  const Codec& codec() const { return *codec_; }
  std::size_t count() const { return count_; }
  /// Whether it says how many images it holds; raw files are stacks where they hold more than one.
  bool is_stack() const { return stack_; }
  /// Of its images, where that is known without reading them.
  std::optional<Size> size() const;

  /// @throws Error, which names the file and in a stack the image
  Image read(std::size_t index) const;

 private:
  void find_samples();
  void find_pages();
  Image read_samples_of(std::size_t index) const;

  std::filesystem::path path_;
  const Codec* codec_;
  ReadOptions options_;
  std::size_t count_ = 1;
  bool stack_ = false;
  std::optional<SampleLayout> layout_;
  std::uint64_t samples_ = 0;         // where they begin
  std::vector<std::uint64_t> pages_;  // of a TIFF file: where they begin
};

/// What is to be written into one file.
struct ImageFileForm {
  const Codec* codec = nullptr;
  std::size_t count = 1;
  bool stack = false;
  ByteOrder raw_order = ByteOrder::little;
};

/// A file of images, all of one size, that comes whole or not at all. All throw Error, which names the file.
class ImageFileWriter {
 public:
  ImageFileWriter(const std::filesystem::path& file, const ImageFileForm& form);
  ~ImageFileWriter();
  void write(const ImageView& image);
  /// After the last image.
  void publish(Durability durability);

 private:
  void write_samples(const ImageView& image);
  void write_page(const ImageView& image);

  std::filesystem::path path_;
  ImageFileForm form_;
  PendingFile file_;
  std::unique_ptr<TiffWriter> pages_;
  std::size_t written_ = 0;
  Size size_;
};

}  // namespace kit

#endif
