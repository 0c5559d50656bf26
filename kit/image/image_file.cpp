#include "kit/image/image_file.h"

#include <utility>

#include "kit/common/error.h"
#include "kit/image/tiff.h"

namespace kit {

namespace fs = std::filesystem;

namespace {

// No format needs more than three bytes a pixel (a PNG of one column that does not compress). The rest is for what
// stands beside the pixels.
constexpr std::size_t kMostImageBytes = 4 * kMostPixels;
constexpr std::uint64_t kMostImages = 1 << 20;

bool is_tiff(const Codec& codec) { return codec.decode == decode_tiff; }

/// Does what concerns a file, whose name its errors get.
template <typename Work>
auto about(const fs::path& file, const std::string& part, const Work& work) {
  try {
    return work();
  } catch (const Error& problem) {
    const std::string text = problem.what(), name = printable(file.string());
    if (text.starts_with(name)) throw;
    throw Error(problem.kind(), concat(name, part, ": ", text), problem.place());
  }
}

RandomAccess reading(const ReadableFile& file) {
  return {[&file](std::uint64_t offset, std::span<unsigned char> to) { return file.read_at(offset, to); },
          nullptr, [&file] { return file.size(); }};
}

RandomAccess writing(PendingFile& file) {
  return {[&file](std::uint64_t offset, std::span<unsigned char> to) { return file.read_at(offset, to); },
          [&file](std::uint64_t offset, ByteView bytes) { file.write_at(offset, bytes); },
          [&file] { return file.size(); }};
}

}  // namespace

const Codec* codec_of(const fs::path& file) { return codec_of_extension(file.extension().string()); }

ImageFile::ImageFile(const fs::path& file, const ReadOptions& options)
    : path_(file), codec_(codec_of(file)), options_(options) {
  about(path_, "", [&] {
    if (codec_->needs_size && options.size == Size{}) refuse("a raw file does not say its size");
    if (codec_->header != nullptr && codec_->header->stacks) find_samples();
    if (is_tiff(*codec_)) find_pages();
  });
}

void ImageFile::find_samples() {
  const ReadableFile file(path_);
  FileStream stream(file);
  SampleLayout layout = codec_->header->read(stream, options_);
  samples_ = stream.position();
  const std::uint64_t there = file.size() - samples_, bytes = layout.image_bytes();
  if (codec_->needs_size) layout.count = there / bytes;
  if (layout.stack && layout.count == 0)
    fail("holds no image (0x", layout.height, 'x', layout.width, ')');
  if (layout.count > kMostImages)
    fail("claims ", layout.count, " images; at most ", kMostImages, " are read");
  if (codec_->needs_size && there > bytes && there % bytes != 0) {
    fail("is truncated: its frame ", layout.count, " has ", there % bytes, " of ", bytes, " bytes");
  }
  if (layout.count == 0 || there != layout.count * bytes) {
    const std::string images = layout.stack ? concat(layout.count, " images of ") : "";
    const std::uint64_t expected = std::max<std::uint64_t>(layout.count, 1) * bytes;
    fail(there < expected ? "is truncated: " : "is too long: ", there, " bytes of pixels, expected ",
         expected, " for ", images, layout.width, 'x', layout.height);
  }
  count_ = static_cast<std::size_t>(layout.count);
  stack_ = layout.stack || count_ > 1;
  layout_ = layout;
}

void ImageFile::find_pages() {
  const ReadableFile file(path_);
  pages_ = TiffReader(reading(file)).pages();
  count_ = pages_.size();
  stack_ = count_ > 1;
}

std::optional<Size> ImageFile::size() const {
  if (!layout_) return std::nullopt;
  return Size{static_cast<std::uint32_t>(layout_->width), static_cast<std::uint32_t>(layout_->height)};
}

Image ImageFile::read_samples_of(std::size_t index) const {
  const ReadableFile file(path_);
  Bytes bytes(layout_->image_bytes());
  bytes.resize(file.read_at(samples_ + index * bytes.size(), bytes));
  return read_samples(bytes, *layout_, options_);
}

Image ImageFile::read(std::size_t index) const {
  return about(path_, stack_ ? concat(" frame ", index) : "", [&] {
    if (layout_) return read_samples_of(index);
    if (!pages_.empty()) {
      const ReadableFile file(path_);
      return TiffReader(reading(file)).read_page(pages_[index]);
    }
    return codec_->decode(read_whole(path_, kMostImageBytes), options_.size);
  });
}

ImageFileWriter::ImageFileWriter(const fs::path& file, const ImageFileForm& form)
    : path_(file), form_(form), file_(file) {}

ImageFileWriter::~ImageFileWriter() = default;

void ImageFileWriter::write(const ImageView& image) {
  about(path_, "", [&] {
    if (written_ == 0) size_ = {image.width, image.height};
    if (Size{image.width, image.height} != size_) {
      fail("would hold images of ", size_.width, 'x', size_.height, " and ", image.width, 'x',
           image.height);
    }
    if (form_.codec->header != nullptr) {
      write_samples(image);
    } else if (is_tiff(*form_.codec)) {
      write_page(image);
    } else {
      file_.write(form_.codec->encode(image));
    }
    ++written_;
  });
}

void ImageFileWriter::write_samples(const ImageView& image) {
  const SampleHeader& header = *form_.codec->header;
  Bytes bytes;
  if (written_ == 0) {
    SampleLayout layout{.width = image.width, .height = image.height, .count = form_.count};
    layout.stack = form_.stack;
    bytes = header.write(layout);
  }
  append_samples(image, form_.codec->needs_size ? form_.raw_order : header.order, bytes);
  file_.write(bytes);
}

void ImageFileWriter::write_page(const ImageView& image) {
  // Compressed they are smaller; the rest is for what stands beside them.
  constexpr std::uint64_t most_of_small_files = 3ull << 30;
  if (!pages_) {
    const std::uint64_t bytes = std::uint64_t{2} * image.pixels.size() * form_.count;
    pages_ = std::make_unique<TiffWriter>(writing(file_), bytes > most_of_small_files);
  }
  pages_->write_page(image);
}

void ImageFileWriter::publish(Durability durability) {
  about(path_, "", [&] {
    if (pages_) pages_->finish();
    file_.publish(durability);
  });
}

}  // namespace kit
