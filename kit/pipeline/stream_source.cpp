#include <memory>
#include <unistd.h>
#include <utility>

#include "kit/common/error.h"
#include "kit/image/image_stream.h"
#include "kit/pipeline/frame_source.h"

namespace kit {

namespace {

constexpr const char* kLabel = "standard input";

class StandardInput {
 public:
  StandardInput(const Codec& codec, const ReadOptions& options, FrameAttributes attributes,
                std::function<bool()> stop)
      : reader_(stream_, codec, options, kLabel),
        attributes_(std::move(attributes)),
        stop_(std::move(stop)) {}

  std::optional<SourceFrame> next() {
    constexpr int pause = 50;
    while (!ended_ && !stream_.ready(pause)) ended_ = stop_();
    if (ended_) return std::nullopt;
    ended_ = true;  // unless a whole image comes: what stands after a broken one is not known
    std::optional<Image> image = reader_.next();
    if (!image) {
      if (reader_.count() == 0) fail(kLabel, ": holds no frame");
      return std::nullopt;
    }
    ended_ = false;
    const Size size{image->width, image->height};
    if (!first_) first_ = size;
    if (size != *first_) {
      fail(kLabel, " frame ", reader_.count() - 1, ": has ", size.width, 'x', size.height,
           " pixels; the frames before it have ", first_->width, 'x', first_->height);
    }
    return SourceFrame{describe_frame(*std::move(image), attributes_), std::nullopt};
  }

 private:
  DescriptorStream stream_{STDIN_FILENO, kLabel};
  ImageStreamReader reader_;
  FrameAttributes attributes_;
  std::function<bool()> stop_;
  std::optional<Size> first_;
  bool ended_ = false;
};

}  // namespace

std::string FrameSource::label(std::size_t index) const {
  return next ? concat(kLabel, " frame ", index) : names[index].label;
}

FrameSource standard_input_source(const Codec& codec, const ReadOptions& options,
                                  const FrameAttributes& attributes, std::function<bool()> stop) {
  const auto input = std::make_shared<StandardInput>(codec, options, attributes, std::move(stop));
  return {{}, {}, [input] { return input->next(); }};
}

}  // namespace kit
