#include "destination.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "kit/common/descriptor.h"
#include "kit/common/error.h"
#include "kit/image/image_stream.h"
#include "run_record.h"

namespace zvfilter {

namespace {

class StandardOutput final : public Destination {
 public:
  StandardOutput(const kit::Codec& codec, kit::ByteOrder order)
      : codec_(codec),
        order_(order),
        stream_((std::fflush(stdout), ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))) {
    if (!stream_ || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
      kit::fail("standard output: cannot be used: ", std::strerror(errno));
  }
  bool in_order() const override { return true; }
  std::size_t write(std::size_t, const kit::FrameView&, const kit::FrameView& after) override {
    kit::write_all(stream_.get(), "standard output",
                   kit::encode_for_stream(codec_, kit::image_of(after), order_));
    return 1;
  }

 private:
  const kit::Codec& codec_;
  kit::ByteOrder order_;
  kit::Descriptor stream_;
};

}  // namespace

FileDestination::FileDestination(const RunOptions& options, std::filesystem::path folder,
                                 std::vector<OutputFiles> outputs, std::vector<bool> present,
                                 std::string record)
    : options_(options),
      folder_(std::move(folder)),
      outputs_(std::move(outputs)),
      present_(std::move(present)),
      record_(std::move(record)),
      stacks_(std::any_of(outputs_.begin(), outputs_.end(),
                          [](const OutputFiles& files) { return files.stack; })),
      preview_(options.output.preview_settings),
      scales_(outputs_.size()) {}

void FileDestination::see(std::size_t index, const kit::FrameView& before, const kit::FrameView& after) {
  if (options_.output.preview) scales_[index] = preview_.scale_of(before, after);
}

std::size_t FileDestination::write(std::size_t index, const kit::FrameView& before,
                                   const kit::FrameView& after) {
  const bool named = !outputs_.empty();
  if (named && present_[index]) return 0;
  const OutputFiles files = named ? outputs_[index] : next_of_stream(index);
  std::call_once(begun_, [&] { begin(); });
  const bool last = index + 1 == outputs_.size();
  const kit::Durability durability =
      options_.output.sync || last ? kit::Durability::synced : kit::Durability::buffered;
  if (files.stack) return write_stacked(files, after, durability);
  write_results(files, options_.output, preview_, named ? scales_[index] : PictureScale{}, before, after,
                durability);
  return 1;
}

OutputFiles FileDestination::next_of_stream(std::size_t index) const {
  OutputFiles files = numbered_output(**options_.output.format, folder_, index);
  if (options_.existing == Existing::refuse) expect_none({files});
  return files;
}

void FileDestination::begin() {
  kit::make_folder(folder_);
  // Results of one folder are those of one run.
  for (std::size_t i = 0; i < outputs_.size(); ++i) {
    if (!present_[i]) remove_results(outputs_[i]);
  }
  kit::write_text(folder_ / kRecordFile, record_, kit::Durability::buffered);
}

std::size_t FileDestination::write_stacked(const OutputFiles& files, const kit::FrameView& after,
                                           kit::Durability durability) {
  if (files.number == 0) {
    stack_ = std::make_unique<kit::ImageFileWriter>(
        files.image,
        kit::ImageFileForm{files.format, files.count, files.stack, options_.output.raw_order});
    stacked_ = 0;
  }
  // A stack comes whole or not at all: the images after one that failed are left out.
  std::unique_ptr<kit::ImageFileWriter> stack = std::exchange(stack_, nullptr);
  if (!stack || stacked_ != files.number) return 0;
  stack->write(kit::image_of(after));
  if (++stacked_ < files.count) {
    stack_ = std::move(stack);
    return 0;
  }
  stack->publish(durability);
  return files.count;
}

std::unique_ptr<Destination> standard_output(const RunOptions& options, const kit::Codec* own) {
  if (options.output.preview)
    kit::refuse("--preview is for images in files of their own; choose a folder and --format png or pgm");
  if (options.existing == Existing::resume)
    kit::refuse("--resume: standard output keeps no results to go on after; choose a folder");
  const kit::Codec* const codec = options.output.format.value_or(own);
  if (codec == nullptr || codec->header == nullptr) {
    kit::refuse("standard output takes raw, pgm or npy", codec == nullptr ? "" : ", not ",
                codec == nullptr ? "" : codec->name, "; choose with --format");
  }
  return std::make_unique<StandardOutput>(*codec, options.output.raw_order);
}

}  // namespace zvfilter
