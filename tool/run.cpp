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

Image image_of(const zv_frame_t* frame, const std::string& filter) {
  const devhost::Frame depth = devhost::depth_frame_of(frame);
  devhost::FrameSpec spec = devhost::inspect(depth.get());
  if (spec.pixels.empty() || spec.pixels.size() != std::size_t{spec.width} * spec.height) {
    fail_run(concat(filter, " gave a frame of ", spec.width, "x", spec.height, " with ",
                    spec.pixels.size(), " pixels"));
  }
  return {spec.width, spec.height, std::move(spec.pixels)};
}

std::uint64_t count_valid(const Image& image) {
  return image.pixels.size() - static_cast<std::uint64_t>(std::count(
                                   image.pixels.begin(), image.pixels.end(), std::uint16_t{0}));
}

void make_folder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) fail_run(concat(folder.string(), ": cannot be made: ", error.message()));
}

void write_results(const OutputFiles& files, const Image& before, const Image& after) {
  try {
    const Bytes image = files.format->encode(after);
    const Bytes picture = files.preview.empty() ? Bytes{} : encode_png(preview(before, after));
    make_folder(files.image.parent_path());
    write_whole(files.image, image);
    if (!files.preview.empty()) write_whole(files.preview, picture);
  } catch (const BadImage& problem) {
    fail_run(files.image.string() + ": " + problem.what());
  }
}

}  // namespace

void FilterStatistics::add(const Image& before, const Image& after, double duration_ms) {
  ++frames;
  valid_before += count_valid(before);
  valid_after += count_valid(after);
  milliseconds.push_back(duration_ms);
  if (before.width != after.width || before.height != after.height) changed.reset();
  if (!changed) return;
  for (std::size_t i = 0; i < before.pixels.size(); ++i) *changed += before.pixels[i] != after.pixels[i];
}

std::vector<FilterStatistics> run_chain(std::vector<Filter>& chain, FrameSource& source,
                                        const std::vector<OutputFiles>& outputs, bool wrap_in_sets) {
  std::vector<FilterStatistics> statistics(chain.size());
  for (std::size_t i = 0; i < chain.size(); ++i) statistics[i].name = chain[i].name();
  Progress progress(source.count());
  for (std::size_t i = 0; i < source.count(); ++i) {
    devhost::FrameSpec spec = source.load(i);
    devhost::Frame frame = devhost::make_frame(spec);
    const Image original{spec.width, spec.height, std::move(spec.pixels)};
    if (wrap_in_sets) frame = devhost::make_frame_set(std::move(frame));

    Image current = original;
    for (std::size_t k = 0; k < chain.size(); ++k) {
      const auto start = std::chrono::steady_clock::now();
      frame = chain[k].process(frame.get(), source.name(i).label);
      const std::chrono::duration<double, std::milli> duration = std::chrono::steady_clock::now() - start;
      Image next = image_of(frame.get(), chain[k].name());
      statistics[k].add(current, next, duration.count());
      current = std::move(next);
    }
    write_results(outputs[i], original, current);
    progress.show(i + 1);
  }
  return statistics;
}

}  // namespace zvfilter
