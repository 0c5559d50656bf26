#include "filterprocessor/speckle.h"

#include <algorithm>
#include <cstdlib>

#include "scenes.h"
#include "support/levels.h"

namespace filterprocessor {
namespace {

using bench::Image;

/// The pixels after call(work, pixels); both between guard pages, the work space at an odd address.
template <typename Call>
Pixels after(const Pixels& pixels, const Call& call) {
  Buffers buffers(17 << 6);
  std::uint16_t* const image = buffers.copy(pixels);
  call(buffers.work_space(9 * pixels.size()), image);
  return Pixels(image, image + pixels.size());
}

struct Removal {
  SpeckleThreshold threshold;
  SpeckleLimit limit;
  std::uint16_t invalid = 0;

  Pixels run(SpeckleKernels::Remove* kernel, const Pixels& pixels, std::size_t width) const {
    return after(pixels, [&](unsigned char* work, std::uint16_t* image) {
      kernel({image, work, width, pixels.size() / width, invalid}, threshold, limit);
    });
  }
};

// -- An independent definition: what can be reached from the first pixel over pixels not yet taken

Pixels reached_from(const Pixels& pixels, const Sides& sides, const Removal& with) {
  const std::size_t cols = sides.width, rows = sides.height;
  const auto threshold = [&](int value) {
    const auto& [by_table, max_diff, table, shift, size] = with.threshold;
    if (!by_table) return max_diff;
    if (table == nullptr || size == 0) return 0;
    const unsigned low = shift < 16 ? static_cast<unsigned>(value) >> shift & 0xff : 0;
    return int{table[std::min<unsigned>(low, size - 1u)]};
  };
  const auto limit = [&](std::size_t first) {
    const auto& [max_size, map, map_cols, map_rows] = with.limit;
    if (map == nullptr) return max_size;
    // What is left of a row counts as the next row's first cells, and what is left of all as the last cell.
    const std::size_t cell =
        first / cols / (rows / map_rows) * map_cols + first % cols / (cols / map_cols);
    return std::int32_t{map[std::min(cell, map_cols * map_rows - 1)]};
  };
  Pixels result = pixels;
  std::vector<bool> taken(result.size());
  for (std::size_t seed = 0; seed < result.size(); ++seed) {
    if (taken[seed] || pixels[seed] == with.invalid) continue;
    std::vector<std::size_t> region = {seed};
    taken[seed] = true;
    for (std::size_t i = 0; i < region.size(); ++i) {
      const std::size_t at = region[i];
      const auto step = [&](bool inside, std::size_t next) {
        if (!inside || taken[next] || pixels[next] == with.invalid) return;
        if (std::abs(pixels[next] - pixels[at]) > threshold(pixels[at])) return;
        taken[next] = true;
        region.push_back(next);
      };
      step(at >= cols, at - cols);
      step(at % cols != 0, at - 1);
      step(at / cols + 1 < rows, at + cols);
      step(at % cols + 1 < cols, at + 1);
    }
    if (static_cast<std::int64_t>(region.size()) <= limit(seed)) {
      for (const std::size_t at : region) result[at] = with.invalid;
    }
  }
  return result;
}

TEST(Speckle, PlainFormEqualsReachability) {
  for (std::uint32_t seed = 0; seed < 1500; ++seed) {
    Source source(seed);
    const Sides sides = {source.size(1, 30), source.size(1, 30)};
    const auto invalid = source.pick<std::uint16_t>({0, 0, 1001, 65535});
    const Pixels pixels = any_pixels(source, sides, invalid);
    const Pixels table = any_table(source, source.size(0, 9));
    const auto shift = source.pick<std::uint8_t>({0, 3, 8, 13, 15, 16, 32, 255});
    const int max_diff = source.pick({-1, 0, 1, 2, 16, 299, 300, 65533, 65534, 1000000});
    const int max_size = source.pick({-5, 0, 1, 2, 3, 5, 9, 40, 2147483647});
    const std::size_t map_cols = source.size(1, static_cast<int>(sides.width));
    const std::size_t map_rows = source.size(1, static_cast<int>(sides.height));
    const Pixels map = any_table(source, map_cols * map_rows);
    Removal with{SpeckleThreshold::fixed(max_diff), SpeckleLimit::fixed(max_size), invalid};
    if (source.flag()) {
      with.threshold = SpeckleThreshold::from_table(source.one_in(8) ? nullptr : table.data(), shift,
                                                    static_cast<std::uint8_t>(table.size()));
    }
    if (source.one_in(3)) with.limit = {0, map.data(), map_cols, map_rows};
    ASSERT_EQ(with.run(plain::speckle.full, pixels, sides.width), reached_from(pixels, sides, with))
        << seed;
  }
}

// -- Rules

Pixels pyramid(int width, const Pixels& pixels, int max_diff, int max_size) {
  return after(pixels, [&](unsigned char* work, std::uint16_t* image) {
    softfilterPyramid(work, image, width, static_cast<int>(pixels.size()) / width, max_diff, max_size, 0);
  });
}

TEST(Speckle, PyramidSmoothsKeptBlocksAndRemovesOthers) {
  // The lattice holds 100 and 300, two regions of one; the last column belongs to no block.
  const Pixels pixels = {90,  89,  0,   305, 7,  //
                         110, 100, 311, 300, 8};
  EXPECT_EQ(pyramid(5, pixels, 10, 0), (Pixels{90, 100, 300, 305, 7, 110, 100, 300, 300, 8}));
  EXPECT_EQ(pyramid(5, pixels, 10, 1), (Pixels{0, 0, 0, 0, 7, 0, 0, 0, 0, 8}));
  EXPECT_EQ(pyramid(5, pixels, 200, 1), (Pixels{90, 89, 300, 305, 7, 110, 100, 311, 300, 8}))
      << "joined; a hole in a block differs too much";
  const Pixels hole = {90,  89, 90, 5,  //
                       110, 0,  90, 5,  //
                       1,   2,  3,  4};
  EXPECT_EQ(pyramid(4, hole, 2, 0), (Pixels{0, 0, 5, 5, 0, 0, 5, 5, 1, 2, 3, 4}));
}

TEST(Speckle, UpsamplingFollowsTheHalfImage) {
  // Half rows 0 and 2 are edges. In row 1, column 0 is left alone.
  const Pixels half = {50, 0, 50, 80, 50, 0};
  Pixels full = {55, 61, 7,  7,   //
                 0,  9,  7,  7,   //
                 1,  2,  62, 91,  //
                 3,  4,  0,  95,  //
                 50, 40, 1,  2,   //
                 39, 99, 3,  4};
  upSample_new(full.data(), half.data(), 2, 3, 10);
  EXPECT_EQ(full, (Pixels{55, 50, 0, 0, 50, 50, 0, 0,   //
                          1,  2,  0, 0, 3,  4,  0, 80,  //
                          50, 40, 0, 0, 50, 50, 0, 0}));
}

TEST(Speckle, HalfResolutionPathFiltersTheHalfImageAndKeepsTheOddBorder) {
  const Pixels before = bench::stereo_scene(101, 75, 3).pixels;
  Pixels expected = before, half(50 * 37);
  plain::speckle.downsample(before.data(), 101, half.data(), 50, 37);
  half = Removal{SpeckleThreshold::fixed(40), SpeckleLimit::fixed(6)}.run(plain::speckle.full, half, 50);
  plain::speckle.upsample(expected.data(), 101, half.data(), 50, 37, 40);
  EXPECT_EQ(after(before, [](unsigned char* work,
                             std::uint16_t* pixels) { softfilterOpt(work, pixels, 101, 75, 40, 6, 0); }),
            expected);
}

// -- The exported functions

class SpeckleFunctions : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(SpeckleFunctions, PassTheirArgumentsOn) {
  const int width = GetParam().first, height = GetParam().second;
  const std::size_t columns = static_cast<std::size_t>(width);
  Pixels table = {2, 9, 1, 7};
  Pixels map = {2, 9};
  Image image = bench::noise(width, height, 1, 24, 5);
  const auto by_table = SpeckleThreshold::from_table(table.data(), 3, 4);
  const auto fixed = SpeckleThreshold::fixed(2);
  const SpeckleLimit by_map = {0, map.data(), 2, 1};
  const auto check = [&](SpeckleKernels::Remove* kernel, const Removal& with, const auto& call) {
    const Pixels actual = after(image.pixels, call);
    EXPECT_EQ(actual, with.run(kernel, image.pixels, columns));
    EXPECT_NE(actual, image.pixels);
  };
  using Work = unsigned char*;
  using Depth = std::uint16_t*;
  check(plain::speckle.full, {fixed, SpeckleLimit::fixed(3), 5},
        [&](Work work, Depth depth) { Softfilter_new(work, depth, width, height, 2, 3, 5); });
  check(plain::speckle.pyramid, {fixed, SpeckleLimit::fixed(3), 5},
        [&](Work work, Depth depth) { softfilterPyramid(work, depth, width, height, 2, 3, 5); });
  check(plain::speckle.pyramid, {by_table, SpeckleLimit::fixed(3), 5}, [&](Work work, Depth depth) {
    softfilterPyramid_lut(work, depth, width, height, table.data(), 3, 4, 3, 5);
  });
  check(plain::speckle.pyramid, {fixed, by_map, 5}, [&](Work work, Depth depth) {
    filterSpecklePyramid(work, depth, map.data(), width, height, 2, 2, 1, 5);
  });
  check(plain::speckle.pyramid, {by_table, by_map, 5}, [&](Work work, Depth depth) {
    filterSpecklePyramid_lut(work, depth, map.data(), width, height, table.data(), 3, 4, 2, 1, 5);
  });
  Pixels expected;
  for (int y = 1; y < height; y += 2)
    for (int x = 1; x < width; x += 2) expected.push_back(image.at(y, x));
  Pixels half(expected.size());
  downSample(image.pixels.data(), half.data(), width, height);
  EXPECT_EQ(half, expected);
}

INSTANTIATE_TEST_SUITE_P(Sizes, SpeckleFunctions,
                         testing::Values(std::pair{61, 40}, std::pair{2, 31}, std::pair{31, 2}));

TEST(Speckle, SizesOutOfRangeTouchNothing) {
  std::uint16_t pixel = 9;
  std::uint16_t limit = 10;
  for (const auto& [width, height] :
       {std::pair{0, 1}, {1, 0}, {-1, -1}, {32768, 1}, {1, 40000}, {1280, -1}}) {
    Softfilter_new(nullptr, &pixel, width, height, 1, 1, 0);
    softfilterPyramid(nullptr, &pixel, width, height, 1, 1, 0);
    softfilterOpt(nullptr, &pixel, width, height, 1, 1, 0);
    downSample(&pixel, nullptr, width, height);
    upSample_new(&pixel, nullptr, width, height, 1);
    for (const int fixed : {0, 1}) {
      EXPECT_EQ(depth_api_softfilter(nullptr, &pixel, &limit, width, height, nullptr, 0, 0, 1, 1, 1, 1, 0,
                                     fixed),
                0);
    }
  }
  softfilterPyramid(nullptr, &pixel, 1, 1, 1, 1, 0);
  filterSpecklePyramid(nullptr, &pixel, &limit, 1, 1, 1, 1, 1, 0);
  // 640 x 1 asks for the pyramid, which leaves it alone.
  Pixels row(640, 5);
  depth_api_softfilter(nullptr, row.data(), nullptr, 640, 1, nullptr, 0, 0, 1, 1000, 1, 1, 0, 1);
  EXPECT_EQ(row, Pixels(640, 5));
  EXPECT_EQ(pixel, 9);
}

struct Dispatched {
  int width, height, max_size;
  bool pyramid;
  int limit;
  Pixels map = {};  ///< of 2 x 2 limits, if that is what counts
};

void expect_dispatch(Dispatched expected) {
  auto& [width, height, max_size, pyramid, limit, map] = expected;
  // Rectangles of so many sizes that the limits tell them apart, on both grids.
  Image image(width, height);
  for (int top = 0, side = 1; top + side < height; top += side + 1, side += side / 4 + 1) {
    for (int col = 0, length = 1; col + length < width; col += length + 1, ++length) {
      for (int row = top; row < top + side; ++row) std::fill_n(&image.at(row, col), length, 800);
    }
  }
  const bool fixed = map.empty();
  const Removal with{SpeckleThreshold::fixed(3),
                     fixed ? SpeckleLimit::fixed(limit) : SpeckleLimit{0, map.data(), 2, 2}};
  Buffers buffers;
  std::uint16_t* const depth = buffers.copy(image.pixels);
  depth_api_softfilter(buffers.work_space(9 * image.size()), depth, fixed ? nullptr : map.data(), width,
                       height, nullptr, 0, 0, 3, max_size, 2, 2, 0, fixed);
  const auto kernel = pyramid ? plain::speckle.pyramid : plain::speckle.full;
  const Pixels result = with.run(kernel, image.pixels, static_cast<std::size_t>(width));
  EXPECT_TRUE(std::ranges::equal(result, std::span(depth, image.size())))
      << width << "x" << height << ", " << max_size;
}

TEST(Speckle, TheSizeChoosesFormAndLimit) {
  for (const Dispatched& expected : {Dispatched{848, 480, 80, false, 80},
                                     {640, 400, 80, true, 20},
                                     {424, 240, 20, true, 5},
                                     {40, 1280, 47, true, 11},
                                     {1280, 640, 3, true, 1920},
                                     {640, 320, 3, true, 480},
                                     {320, 160, -9, true, 120},
                                     {160, 266, 3, true, 30},
                                     {424, 266, 3, true, 120},
                                     {100, 266, 4, true, 1},
                                     {266, 424, 0, false, 480},
                                     {90, 90, 1, false, 1}}) {
    expect_dispatch(expected);
  }
}

TEST(Speckle, DefaultLimitsAreReadAtEveryCall) {
  EXPECT_EQ((std::vector{Depth_MaxDiff, Depth_MaxSpeckleSize_160x120, Depth_MaxSpeckleSize_320x240,
                         Depth_MaxSpeckleSize_640x480, Depth_MaxSpeckleSize_1280x960}),
            (std::vector{16, 30, 120, 480, 1920}));
  const std::int32_t before = Depth_MaxSpeckleSize_640x480;
  Depth_MaxSpeckleSize_640x480 = 9;
  expect_dispatch({640, 400, 0, true, 9});
  expect_dispatch({424, 240, 0, true, 2});
  expect_dispatch({300, 200, 0, false, 9});
  Depth_MaxSpeckleSize_640x480 = before;
}

TEST(Speckle, MapModeTakesThePyramidAt1280And640Only) {
  Pixels map = {2, 9, 0, 30};
  expect_dispatch({2, 2, 77, false, 0, map});
  expect_dispatch({640, 20, 77, true, 0, map});
  expect_dispatch({12, 1280, 77, true, 0, map});
  expect_dispatch({320, 240, 77, false, 0, map});
  expect_dispatch({424, 240, 77, false, 0, map});
  Pixels pixels(4, 3);
  depth_api_softfilter(nullptr, pixels.data(), map.data(), 2, 2, nullptr, 0, 0, 1, 77, 0, 3, 0, 0);
  depth_api_softfilter(nullptr, pixels.data(), nullptr, 2, 2, nullptr, 0, 0, 1, 77, 1, 1, 0, 0);
  EXPECT_EQ(pixels, Pixels(4, 3)) << "a map that does not fit, or none, leaves the image";
}

}  // namespace
}  // namespace filterprocessor
