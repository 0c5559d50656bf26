// What the library makes of frames is what the plug-in makes of them, however the pixels come and go.
#include <future>

#include "support/every_filter.h"
#include "support/filter_driver.h"
#include "zvfilter/chain_handle.h"

namespace zvfilter {

namespace {

constexpr std::uint32_t kWidth = 97, kHeight = 41;
constexpr unsigned kFrames = 4;

using filterprocessor::FilterUse;

devhost::FrameTraits frame_of(const FilterUse& use, unsigned number) {
  return filterprocessor::lively_frame(kWidth, kHeight, use.pixel_type, number);
}

zvf_input input_of(const devhost::FrameTraits& traits) {
  zvf_input input = zvf_input_of(traits.width, traits.height);
  zvf_input_set_stereo(&input, traits.disparity.baseline, traits.disparity.fx);
  input.pixel_type = traits.pixel_type;
  input.has_correction = true;
  input.correction = traits.metadata.at(ZV_METADATA_DISPARITY_CORRECTION);
  return input;
}

ChainHandle chain_of(const FilterUse& use) {
  ChainHandle chain = parse(std::string(use.name) + ":" + values_text(use.name, use.configuration));
  const zvf_input input = input_of(frame_of(use, 0));
  zvf_error error = {};
  EXPECT_EQ(zvf_chain_set_input(chain.get(), &input, &error), ZVF_OK) << error.message;
  return chain;
}

/// Rows with a gap of `gap` samples after each.
Pixels with_gaps(const Pixels& pixels, std::size_t width, std::size_t gap) {
  Pixels result(pixels.size() / width * (width + gap), 0x5555);
  for (std::size_t i = 0; i < pixels.size(); ++i)
    result[i / width * (width + gap) + i % width] = pixels[i];
  return result;
}

class EveryFilter : public testing::TestWithParam<FilterUse> {};

TEST_P(EveryFilter, EqualsThePlugInHoweverPixelsComeAndGo) {
  filterprocessor::FilterDriver plug_in(GetParam().name);
  plug_in.update(GetParam().configuration);
  const ChainHandle plain = chain_of(GetParam()), gapped = chain_of(GetParam()),
                    in_place = chain_of(GetParam());
  for (unsigned i = 0; i < kFrames; ++i) {
    const devhost::FrameTraits traits = frame_of(GetParam(), i);
    const devhost::Frame made = plug_in.process(devhost::make_frame(traits));
    const Pixels expected = devhost::inspect(made.get()).pixels;
    EXPECT_EQ(run(plain, traits.pixels), expected);

    const Pixels frame = with_gaps(traits.pixels, kWidth, 3);
    Pixels result = with_gaps(Pixels(expected.size()), kWidth, 5);
    EXPECT_EQ(zvf_chain_run(gapped.get(), frame.data(), (kWidth + 3) * 2, result.data(), (kWidth + 5) * 2,
                            nullptr),
              ZVF_OK);
    EXPECT_EQ(result, with_gaps(expected, kWidth, 5));

    result = traits.pixels;
    EXPECT_EQ(zvf_chain_run(in_place.get(), result.data(), 0, result.data(), 0, nullptr), ZVF_OK);
    EXPECT_EQ(result, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Filters, EveryFilter,
                         testing::ValuesIn(filterprocessor::every_filter(kWidth, kHeight)),
                         [](const auto& each) { return std::string(each.param.name); });

ChainHandle long_chain() {
  ChainHandle chain = parse(
      "DisparityTransform:; clean=NoiseRemovalFilter:min_diff=64; SpatialAdvancedFilter:; "
      "TemporalFilter:; HoleFillingFilter:hole_filling_mode=1; DepthResize:scale=0.5");
  const zvf_input input = input_of(filterprocessor::lively_frame(kWidth, kHeight, ZVF_DISPARITY, 0));
  EXPECT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  return chain;
}

Pixels disparity(unsigned number) {
  return filterprocessor::lively_frame(kWidth, kHeight, ZVF_DISPARITY, number).pixels;
}

TEST(Stages, AreTheFramesAfterEachStep) {
  const ChainHandle chain = long_chain();
  zvf_chain_keep_stages(chain.get(), true);
  const Pixels result = run(chain, disparity(0));
  Pixels last;
  for (std::size_t i = 0; i < zvf_chain_size(chain.get()); ++i) {
    zvf_view view;
    ASSERT_EQ(zvf_chain_stage(chain.get(), i, &view, nullptr), ZVF_OK);
    EXPECT_EQ(view.pixel_type, ZVF_DEPTH);
    last.assign(view.pixels, view.pixels + std::size_t{view.width} * view.height);
  }
  EXPECT_EQ(last, result);
  EXPECT_EQ(last.size(), std::size_t{kWidth / 2} * (kHeight / 2));
}

TEST(Frames, OutliveTheirChainOnAnyThread) {
  ChainHandle chain = long_chain();
  const Pixels expected = run(long_chain(), disparity(0));
  zvf_frame* const frame = zvf_chain_run_frame(chain.get(), disparity(0).data(), 0, nullptr);
  ASSERT_NE(frame, nullptr);
  chain.reset();
  std::async(std::launch::async, [&] {
    const zvf_view view = zvf_frame_view(frame);
    EXPECT_EQ(Pixels(view.pixels, view.pixels + std::size_t{view.width} * view.height), expected);
    zvf_frame_release(frame);
  }).get();
}

TEST(Chains, OfDifferentThreadsAreIndependent) {
  const auto results = [] {
    const ChainHandle chain = long_chain();
    std::vector<Pixels> all;
    for (unsigned i = 0; i < 10 * kFrames; ++i) all.push_back(run(chain, disparity(i)));
    return all;
  };
  std::vector<std::future<std::vector<Pixels>>> others;
  for (int t = 0; t < 4; ++t) others.push_back(std::async(std::launch::async, results));
  for (auto& other : others) EXPECT_EQ(other.get(), results());
}

}  // namespace

}  // namespace zvfilter
