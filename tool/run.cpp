#include "run.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "failure.h"
#include "files.h"
#include "preview.h"
#include "progress.h"

namespace zvfilter {

namespace {

FrameImage image_of(const zv_frame_t* frame, const std::string& filter) {
  const devhost::Frame depth = devhost::depth_frame_of(frame);
  devhost::FrameTraits traits = devhost::inspect(depth.get());
  if (traits.pixels.empty() || traits.pixels.size() != std::size_t{traits.width} * traits.height) {
    fail_run(concat(filter, " gave a frame of ", traits.width, "x", traits.height, " with ",
                    traits.pixels.size(), " pixels"));
  }
  return FrameImage(std::move(traits));
}

void write_results(const OutputFiles& files, const FrameImage& before, const FrameImage& after) {
  try {
    const Bytes image = files.format->encode(after.image);
    const Bytes picture = files.preview.empty() ? Bytes{} : encode_png(preview(before, after));
    make_folder(files.image.parent_path());
    write_whole(files.image, image);
    if (!files.preview.empty()) write_whole(files.preview, picture);
  } catch (const BadImage& problem) {
    fail_run(files.image.string() + ": " + problem.what());
  }
}

}  // namespace

void FilterStatistics::add(const FrameImage& before, const FrameImage& after, double duration_ms) {
  ++frames;
  valid_before += count_valid(before);
  valid_after += count_valid(after);
  milliseconds.push_back(duration_ms);
  const Image &from = before.image, &to = after.image;
  if (from.width != to.width || from.height != to.height) changed.reset();
  if (!changed) return;
  for (std::size_t i = 0; i < from.pixels.size(); ++i) *changed += from.pixels[i] != to.pixels[i];
}

RunResults run_chain(std::vector<Filter>& chain, FrameSource& source,
                     const std::vector<OutputFiles>& outputs, bool wrap_in_sets) {
  RunResults results;
  results.filters.resize(chain.size());
  for (std::size_t i = 0; i < chain.size(); ++i) results.filters[i].name = chain[i].name();
  Progress progress(source.count());
  for (std::size_t i = 0; i < source.count(); ++i) {
    SourceFrame loaded = source.load(i);
    devhost::Frame frame = devhost::make_frame(loaded.frame);
    const FrameImage original(std::move(loaded.frame));
    if (wrap_in_sets) frame = devhost::make_frame_set(std::move(frame));
    if (loaded.truth) results.accuracy.resize(chain.size() + 1);
    const auto compare = [&](std::size_t stage, const FrameImage& image) {
      if (loaded.truth) results.accuracy[stage].add(image, *loaded.truth);
    };

    FrameImage current = original;
    compare(0, current);
    for (std::size_t k = 0; k < chain.size(); ++k) {
      const auto start = std::chrono::steady_clock::now();
      frame = chain[k].process(frame.get(), source.name(i).label);
      const std::chrono::duration<double, std::milli> duration = std::chrono::steady_clock::now() - start;
      FrameImage next = image_of(frame.get(), chain[k].name());
      results.filters[k].add(current, next, duration.count());
      compare(k + 1, next);
      current = std::move(next);
    }
    write_results(outputs[i], original, current);
    progress.show(i + 1);
  }
  return results;
}

}  // namespace zvfilter
