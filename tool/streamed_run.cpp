#include "streamed_run.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iomanip>
#include <memory>
#include <ostream>
#include <unistd.h>

#include "effect_notes.h"
#include "kit/common/error.h"
#include "kit/image/image_stream.h"
#include "kit/pipeline/sequence.h"
#include "progress.h"
#include "report.h"

namespace zvfilter {

namespace fs = std::filesystem;

namespace {

constexpr const char* kStandard = "-";

/// Takes results in the order of their frames.
class Sink {
 public:
  Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  virtual ~Sink() = default;
  virtual void write(const kit::FrameName& name, const kit::FrameView& frame) = 0;
};

/// Standard output as a stream of frames. From then on, all else that is printed there goes to standard error.
class StandardOutput final : public Sink {
 public:
  StandardOutput(const kit::Codec& codec, kit::ByteOrder order)
      : codec_(codec),
        order_(order),
        stream_((std::fflush(stdout), ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))) {
    if (!stream_ || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
      kit::fail("standard output: cannot be used: ", std::strerror(errno));
  }
  void write(const kit::FrameName&, const kit::FrameView& frame) override {
    kit::write_all(stream_.get(), "standard output",
                   kit::encode_for_stream(codec_, kit::image_of(frame), order_));
  }

 private:
  const kit::Codec& codec_;
  kit::ByteOrder order_;
  kit::Descriptor stream_;
};

/// Files of their own, for what has no names.
class NumberedFiles final : public Sink {
 public:
  NumberedFiles(fs::path folder, const kit::Codec& codec, kit::ByteOrder order)
      : folder_(std::move(folder)), form_{.codec = &codec, .raw_order = order} {}
  void write(const kit::FrameName& name, const kit::FrameView& frame) override {
    kit::make_folder(folder_);
    kit::ImageFileWriter file(folder_ / (name.stem + std::string(form_.codec->extensions.front())),
                              form_);
    file.write(kit::image_of(frame));
    file.publish(kit::Durability::buffered);
  }

 private:
  fs::path folder_;
  kit::ImageFileForm form_;
};

/// A file for each of the source's, a stack for a stack.
class Stacks final : public Sink {
 public:
  Stacks(const kit::FrameSource& source, const OutputSettings& settings, kit::ByteOrder order)
      : order_(order) {
    kit::FrameSource files;
    for (const kit::FrameName& name : source.names) {
      if (name.number > 0) continue;
      files.names.push_back(name);
      files.names.back().stem = name.files.front().stem().string();
    }
    InputFiles inputs;
    inputs.add(source);
    outputs_ = plan_outputs(files, inputs, settings);
  }
  void write(const kit::FrameName& name, const kit::FrameView& frame) override {
    const OutputFiles& output = outputs_[done_];
    if (name.number == 0) {
      kit::make_folder(output.image.parent_path());
      file_ = std::make_unique<kit::ImageFileWriter>(
          output.image, kit::ImageFileForm{output.format, name.count, name.stack, order_});
    }
    file_->write(kit::image_of(frame));
    if (name.number + 1 < name.count) return;
    ++done_;
    file_->publish(done_ == outputs_.size() ? kit::Durability::synced : kit::Durability::buffered);
  }

 private:
  kit::ByteOrder order_;
  std::vector<OutputFiles> outputs_;
  std::unique_ptr<kit::ImageFileWriter> file_;
  std::size_t done_ = 0;
};

bool holds_stacks(const kit::Codec& codec) {
  return codec.name == "tiff" || (codec.header != nullptr && codec.header->stacks);
}

const kit::Codec& stream_format(const kit::Codec* own, const OutputSettings& output) {
  const kit::Codec* const codec = output.format.value_or(own);
  if (codec == nullptr || codec->header == nullptr) {
    kit::refuse("standard output takes raw, pgm or npy", codec == nullptr ? "" : ", not ",
                codec == nullptr ? "" : codec->name, "; choose with --format");
  }
  return *codec;
}

void refuse_preview(const RunOptions& options) {
  if (options.output.preview)
    kit::refuse("--preview is for images in files of their own; choose a folder and --format png or pgm");
}

/// A chain at work on one frame after the other.
class StreamedRun {
 public:
  StreamedRun(kit::Pipeline& pipeline, kit::Handover handover, Sink& sink, std::ostream& notes)
      : pipeline_(pipeline),
        handover_(handover),
        results_(pipeline.chain()),
        effects_(pipeline.chain(), notes) {
    visitor_.on_passage = [this](const kit::SourceFrame& input, const kit::Passage& passage) {
      results_.add(passage, input.truth);
      effects_.add(passage);
    };
    visitor_.on_result = [this, &sink](std::size_t, const kit::SourceFrame&,
                                       const kit::FrameView& result) { sink.write(*name_, result); };
  }
  void run(const kit::FrameName& name, const std::function<kit::SourceFrame()>& load) {
    name_ = &name;
    kit::run_sequence({{name}, [&](std::size_t) { return load(); }}, pipeline_, {handover_, 1, {}},
                      visitor_);
  }
  void finish(std::ostream& out) {
    effects_.print_exempt();
    print_results(results_, nullptr, out);
  }

 private:
  kit::Pipeline& pipeline_;
  kit::Handover handover_;
  kit::ChainResults results_;
  EffectNotes effects_;
  kit::SequenceVisitor visitor_;
  const kit::FrameName* name_ = nullptr;
};

}  // namespace

kit::ReadOptions read_options(const RunOptions& options) {
  const kit::FrameAttributes& attributes = options.attributes;
  kit::ReadOptions read;
  read.size = options.size.value_or(kit::Size{});
  read.raw_order = options.raw_order.value_or(kit::ByteOrder::little);
  const float of_camera = attributes.camera ? attributes.camera->traits.value_scale : 1.0f;
  constexpr double millimetres_a_metre = 1000;
  if (options.metres)
    read.units_a_metre = millimetres_a_metre / double{attributes.value_scale.value_or(of_camera)};
  return read;
}

bool is_standard_input(const RunOptions& options) {
  const bool named = std::count(options.inputs.begin(), options.inputs.end(), kStandard) > 0;
  if (named && options.inputs.size() > 1) kit::refuse("- is standard input and has to be the only input");
  return named;
}

bool is_streamed(const kit::FrameSource& source, const RunOptions& options) {
  if (options.output.folder == kStandard) return true;
  return std::any_of(source.names.begin(), source.names.end(), [&](const kit::FrameName& name) {
    const kit::Codec& codec = *options.output.format.value_or(kit::codec_of_extension(name.extension));
    const bool turned = codec.needs_size && options.raw_order == kit::ByteOrder::big;
    return turned || (name.stack && holds_stacks(codec));
  });
}

void run_standard_input(kit::Pipeline& pipeline, const RunOptions& options, std::ostream& out,
                        std::ostream& notes) {
  refuse_preview(options);
  if (options.truth) kit::refuse("--truth is for files; standard input has none");
  const kit::Codec* const codec =
      options.stream_format != nullptr ? options.stream_format : options.output.format.value_or(nullptr);
  if (codec == nullptr || codec->header == nullptr)
    kit::refuse(
        "standard input has no name to tell its format; choose with --input-format raw, pgm or npy");
  kit::ReadOptions read = read_options(options);
  if (read.size == kit::Size{}) read.size = options.expected_size.value_or(kit::Size{});
  if (codec->needs_size && read.size == kit::Size{})
    kit::refuse("raw frames do not say their size; give it with --size WxH");
  if (options.output.folder.empty()) kit::refuse("the folder for the results has no name");

  std::unique_ptr<Sink> sink;
  if (options.output.folder == kStandard) {
    sink = std::make_unique<StandardOutput>(stream_format(codec, options.output), read.raw_order);
  } else {
    sink = std::make_unique<NumberedFiles>(options.output.folder, *options.output.format.value_or(codec),
                                           read.raw_order);
  }
  StreamedRun run(pipeline, options.handover, *sink, notes);
  kit::DescriptorStream stream(STDIN_FILENO, "standard input");
  kit::ImageStreamReader reader(stream, *codec, read, "standard input");
  std::optional<kit::Size> first;
  for (std::size_t number = 0;; ++number) {
    auto image = reader.next();
    if (!image) break;
    const kit::Size size{image->width, image->height};
    const std::string label = kit::concat("standard input frame ", number);
    if (size != first.value_or(size)) {
      kit::fail(label, ": has ", size.width, 'x', size.height, " pixels; the frames before it have ",
                first->width, 'x', first->height);
    }
    first = size;
    const kit::FrameName name{
        label, kit::concat("frame_", std::setfill('0'), std::setw(4), number), "", {}};
    run.run(name, [&] {
      return kit::SourceFrame{kit::describe_frame(*std::move(image), options.attributes), std::nullopt};
    });
  }
  if (!first) kit::fail("standard input: holds no frame");
  run.finish(out);
}

void run_streamed(kit::Pipeline& pipeline, const RunOptions& options, const kit::FrameSource& source,
                  std::ostream& out, std::ostream& notes) {
  refuse_preview(options);
  const kit::ByteOrder order = options.raw_order.value_or(kit::ByteOrder::little);
  std::unique_ptr<Sink> sink;
  if (options.output.folder == kStandard) {
    const kit::Codec* const own = kit::codec_of_extension(source.names.front().extension);
    sink = std::make_unique<StandardOutput>(stream_format(own, options.output), order);
  } else {
    sink = std::make_unique<Stacks>(source, options.output, order);
  }
  StreamedRun run(pipeline, options.handover, *sink, notes);
  Progress progress(source.names.size());
  for (std::size_t i = 0; i < source.names.size(); ++i) {
    run.run(source.names[i], [&] { return source.load(i); });
    progress.show(i + 1);
  }
  progress.clear();
  run.finish(out);
}

}  // namespace zvfilter
