// Advice, its measures and its search, with the project's own filters.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "filter_run.h"
#include "kit/advise/advice.h"
#include "kit/advise/roughness.h"

namespace kit {
namespace {

/// Of the virtual camera, with much noise.
Footage footage_of(std::size_t frames) {
  const char* options = "size=160x112,baseline=200,seed=3,noise=0.1,motion=still,frames=";
  return {.frames = camera_frames(concat(options, frames)), .truth = {}};
}

Chain chain_of(const std::string& text) { return parse_chain(text, "chain").steps; }

/// A plane that leans away, in depth of a tenth of a millimetre, with every n-th column's depth off by some per cent.
Frame plane(int off_by, std::size_t every) {
  Frame frame;
  frame.width = 64;
  frame.height = 48;
  frame.value_scale = 0.1f;
  frame.disparity.baseline = 50;
  frame.disparity.fx = 500;
  frame.disparity.unit = 1;
  for (std::size_t i = 0; i < 64 * 48; ++i) {
    const double depth = 10000 / (1 + 0.004 * static_cast<double>(i % 64));
    const double factor = every > 0 && i % every == 0 ? 1 + off_by / 100.0 : 1.0;
    frame.pixels.push_back(static_cast<std::uint16_t>(std::lround(depth * factor)));
  }
  return frame;
}

TEST(AdviceMeasures, APlaneIsSmoothAndFarErrorsCountAsNearOnes) {
  const Lattice lattice(64, 48);
  ASSERT_EQ(lattice.size(), 64u * 48u);
  const auto roughness_of = [&](const Frame& frame) {
    ErrorCounts errors;
    add_roughness(InverseTable(frame)(frame.pixels), lattice, errors);
    return *errors.quantile(0.5);
  };
  EXPECT_LT(roughness_of(plane(0, 0)), 2e-4) << "the rounding of the depth alone";
  EXPECT_GT(roughness_of(plane(5, 3)), 0.02);
  // Half as far, twice the inverse depth, and four times less of an error in millimetres.
  Prediction near, far;
  near.add(1 / 1.00f, 1 / 1.01f);
  far.add(1 / 2.00f, 1 / 2.04f);
  EXPECT_NEAR(*near.errors.quantile(1), *far.errors.quantile(1), 2e-4);
}

TEST(AdviceMeasures, SurfacesAreWhatIsThereWithoutTheNoise) {
  const Frame noisy = plane(3, 7), clean = plane(0, 0);
  const Lattice lattice(64, 48);
  const Inverses raw = InverseTable(noisy)(noisy.pixels), truth = InverseTable(clean)(clean.pixels);
  const Inverses surfaces = surfaces_of(raw, lattice);
  double raw_error = 0, surface_error = 0;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (surfaces[i] <= 0) continue;
    raw_error = std::max(raw_error, std::abs(double{raw[i]} - double{truth[i]}));
    surface_error = std::max(surface_error, std::abs(double{surfaces[i]} - double{truth[i]}));
  }
  EXPECT_GT(raw_error, 0.025);
  EXPECT_LT(surface_error, raw_error / 3);
}

TEST(AdviceMeasures, HoleSidesSayWhatLiesBehind) {
  const Lattice lattice(8, 1);
  const Inverses raw = {0, 1, 0, 2, 0, 2, 0, 0};
  const Inverses behind = behind_holes(raw, lattice);
  EXPECT_EQ(behind, (Inverses{kUnknown, 0, 1, 0, 0, 0, kUnknown, kUnknown}));
  FilledHoles filled;
  filled.add(behind, raw, {5, 1, 1, 2, 2, 2, 0, 0});
  EXPECT_EQ(filled.within, 1);
  EXPECT_EQ(filled.between.errors.total(), 2);
  EXPECT_EQ(filled.between.off, 1) << "the one at the border, which nobody knows";
}

TEST(AdviceMeasures, PlantedFaultsAreFoundAgainWhenNothingIsDone) {
  Frame frame = plane(0, 0);
  const Frame before = frame;
  const InverseTable inverses(frame);
  PlantedFrame planted{frame, inverses, 0};
  Chance chance(5);
  const std::vector<Planted> hidden = hide_pixels(planted, chance),
                             speckles = plant_speckles(planted, chance);
  ASSERT_GT(hidden.size(), 20u);
  ASSERT_GT(speckles.size(), 5u);
  for (const bool mended : {false, true}) {
    const auto& pixels = mended ? before.pixels : frame.pixels;
    Hidden holes;
    holes.add(hidden, inverses, pixels);
    EXPECT_EQ(holes.filled, mended ? holes.count : 0);
    EXPECT_EQ(holes.errors.off, 0);
    Speckles specks;
    specks.add(speckles, inverses, pixels);
    EXPECT_EQ(specks.left, mended ? 0 : specks.count);
  }
}

TEST(AdviceMeasures, ChainsAreMeasuredForWhatTheyDo) {
  const Footage footage = footage_of(8);
  Trials trials(own_filters(), footage, false, 1), others(own_filters(), footage, false, 1);
  const auto measure_by = [](Trials& all, const std::string& steps) {
    return all.run(chain_of("DisparityTransform:" + steps), {{0, 8, 0}});
  };
  const auto measure = [&](const std::string& steps) { return measure_by(trials, steps); };
  using enum Measure;
  const Measures raw = measure(""), steady = measure(";TemporalFilter:weight=0.2,diff_scale=0.5"),
                 clean = measure(";NoiseRemovalFilter:max_size=60,min_diff=512"),
                 smooth = measure(";SpatialAdvancedFilter:disp_diff=512"),
                 filled = measure(";HoleFillingFilter:hole_filling_mode=1"),
                 margin = measure(";EdgeNoiseRemovalFilter:margin_x_th=200,limit_x_th=600");
  EXPECT_LT(*steady[flicker], *raw[flicker] / 2);
  EXPECT_LT(*steady[median], *raw[median]);
  EXPECT_LT(*clean[speckles], 0.5 * *raw[speckles]);
  EXPECT_LT(*smooth[roughness], *raw[roughness] / 2);
  EXPECT_LT(*filled[missing], *raw[missing] - 0.05);
  EXPECT_GT(*filled[off], *raw[off]) << "most of what is filled is the blind border";
  EXPECT_GT(*margin[lost], 0.02);
  EXPECT_EQ(*raw[lost], 0);
  // What was begun with the same steps is taken from there.
  const std::string both =
      ";SpatialAdvancedFilter:disp_diff=512;TemporalFilter:weight=0.2,diff_scale=0.5";
  EXPECT_EQ(measure(both).values, measure_by(others, both).values);
}

TEST(AdviceMeasures, LimitsAndWeightsMakeTheLoss) {
  using enum Measure;
  Measures raw, better, beyond;
  raw[median] = 10, raw[missing] = 0.1, raw[lost] = 0.0;
  better[median] = 5, better[missing] = 0.1, better[lost] = 0.04;
  beyond[median] = 5, beyond[missing] = 0.1, beyond[lost] = 0.15;
  Weights weights = {};
  set_weight(weights, "median=3");
  set_weight(weights, "missing=1");
  EXPECT_DOUBLE_EQ(loss_of(raw, raw, weights), 1);
  EXPECT_DOUBLE_EQ(loss_of(better, raw, weights), (3 * 0.5 + 1) / 4);
  EXPECT_DOUBLE_EQ(loss_of(beyond, raw, weights), (3 * 0.5 + 1) / 4 + 10 * (0.15 - 0.05));
  EXPECT_EQ(beyond_limits(beyond, raw), std::vector<std::string_view>{"lost"});
}

TEST(AdviceSplit, NoFrameIsBothSearchedOnAndMeasured) {
  for (std::size_t frames = 1; frames < 300; ++frames) {
    const Split split = split_frames(frames);
    std::vector<int> measured(frames);
    for (const std::vector<Clip>& clips : {split.search, split.held_out})
      for (const Clip& clip : clips)
        for (std::size_t i = clip.measured; i < clip.count; ++i) ++measured.at(clip.first + i);
    ASSERT_LE(*std::max_element(measured.begin(), measured.end()), 1) << frames << " frames";
    EXPECT_EQ(split.held_out.empty(), frames < 6);
  }
}

TEST(Advice, StaysInRangesThatMakeSense) {
  const Footage footage = footage_of(1);
  const Trials trials(own_filters(), footage, false, 1);
  Chance chance(1);
  for (const Chain& order : sensible_orders(trials.input(), false)) {
    const Space space(own_filters(), order, trials.input(), {});
    for (int i = 0; i < 50; ++i) {
      const Chain chain = space.random(chance);
      static_cast<void>(Pipeline(own_filters(), chain));  // takes every value
      for (const Gene& gene : space.genes()) {
        const double value = *parse_number(chain[gene.step].values->at(gene.key));
        EXPECT_GE(value, gene.min) << gene.key;
        EXPECT_LE(value, gene.max) << gene.key;
        EXPECT_NEAR(gene.place_of(value), space.place(chain, gene), 1e-9);
      }
    }
  }
  // On disparity frames the number of passes is always one.
  const Space before(own_filters(), chain_of("SpatialAdvancedFilter:"), trials.input(), {});
  for (const Gene& gene : before.genes()) EXPECT_NE(gene.key, "magnitude");
}

TEST(Advice, SaysThatNothingHelps) {
  // Frames of a still plane without noise, where every pixel is right.
  AdviceRequest request;
  request.footage.frames.assign(8, plane(0, 0));
  request.evaluations = 20;
  request.weights = Weights{};
  set_weight(*request.weights, "off=1");
  const Advice advice = advise(own_filters(), request);
  EXPECT_FALSE(advice.helps);
  EXPECT_TRUE(advice.chain.empty());
  EXPECT_EQ(advice.remarks.back(), "No filter helps by these measures.");
}

TEST(Advice, OfOneFrameIsWithoutMemory) {
  AdviceRequest request{.footage = footage_of(1)};
  request.evaluations = 30;
  const Advice single = advise(own_filters(), request);
  EXPECT_FALSE(single.held_out);
  EXPECT_TRUE(single.remarks.front().starts_with("One frame"));
  for (const Step& step : single.chain) EXPECT_NE(step.filter, "TemporalFilter");
  EXPECT_FALSE(single.rows.front().measures[Measure::flicker]);
}

}  // namespace
}  // namespace kit
