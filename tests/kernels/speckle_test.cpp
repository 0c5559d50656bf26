#include "filterprocessor/speckle.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "kernels/kernel_set.h"
#include "kernels/speckle/speckle.h"
#include "scenes.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

using bench::Image;
std::size_t area(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// Exactly 9 bytes a pixel, so that the address sanitizer sees the next one, from an address that is
/// `offset` above an aligned one, and not zero.
class Work {
 public:
  explicit Work(std::size_t pixels, std::size_t offset = 0)
      : bytes_(new unsigned char[9 * pixels + offset]), start_(bytes_.get() + offset) {
    std::fill_n(bytes_.get(), 9 * pixels + offset, static_cast<unsigned char>(0xa5));
  }
  operator unsigned char*() { return start_; }

 private:
  std::unique_ptr<unsigned char[]> bytes_;
  unsigned char* start_;
};

struct Case {
  SpeckleThreshold threshold;
  SpeckleLimit limit;
  std::uint16_t invalid = 0;
};

Image run(SpeckleKernels::Remove* kernel, Image image, const Case& with, std::size_t offset = 0) {
  Work work(image.pixels.size(), offset);
  kernel({image.pixels.data(), work, static_cast<std::size_t>(image.width),
          static_cast<std::size_t>(image.height), with.invalid},
         with.threshold, with.limit);
  return image;
}

Image image_of(int width, Pixels pixels) {
  Image image(width, static_cast<int>(pixels.size()) / width);
  image.pixels = std::move(pixels);
  return image;
}

Pixels softfilter_new(int width, Pixels pixels, int max_diff, int max_size, std::uint16_t invalid = 0) {
  Work work(pixels.size());
  Softfilter_new(work, pixels.data(), width, static_cast<int>(pixels.size()) / width, max_diff, max_size,
                 invalid);
  return pixels;
}

Pixels pyramid(int width, Pixels pixels, int max_diff, int max_size) {
  Work work(pixels.size());
  softfilterPyramid(work, pixels.data(), width, static_cast<int>(pixels.size()) / width, max_diff,
                    max_size, 0);
  return pixels;
}

TEST(Speckle, RemovesRegionsOfAtMostTheLimit) {
  const Pixels one = {0, 0, 0, 0, 700, 0, 0, 0, 0};
  EXPECT_EQ(softfilter_new(3, one, 10, 1), Pixels(9, 0));
  EXPECT_EQ(softfilter_new(3, one, 10, 0), one);
  EXPECT_EQ(softfilter_new(3, one, 10, -5), one);

  const Pixels five = {0, 50, 0, 50, 50, 50, 0, 50, 0};
  EXPECT_EQ(softfilter_new(3, five, 0, 5), Pixels(9, 0));
  EXPECT_EQ(softfilter_new(3, five, 0, 4), five);
  EXPECT_EQ(softfilter_new(3, five, 0, 2147483647), Pixels(9, 0));
}

TEST(Speckle, JoinsAcrossEdgesOnlyAndUpToTheThreshold) {
  EXPECT_EQ(softfilter_new(3, {5, 0, 0, 0, 5, 5, 0, 5, 5}, 0, 1), (Pixels{0, 0, 0, 0, 5, 5, 0, 5, 5}));
  EXPECT_EQ(softfilter_new(3, {10, 20, 30}, 10, 2), (Pixels{10, 20, 30}));
  EXPECT_EQ(softfilter_new(3, {10, 20, 30}, 9, 1), (Pixels{0, 0, 0}));
  EXPECT_EQ(softfilter_new(2, {7, 7}, -1, 1), (Pixels{0, 0})) << "not even equal values join";
  EXPECT_EQ(softfilter_new(2, {7, 7}, -1, 0), (Pixels{7, 7}));
  EXPECT_EQ(softfilter_new(2, {1, 65535}, 65534, 1), (Pixels{1, 65535}));
  EXPECT_EQ(softfilter_new(2, {1, 65535}, 65533, 1), (Pixels{0, 0}));
  EXPECT_EQ(softfilter_new(2, {1, 65535}, 1000000, 1), (Pixels{1, 65535}));
  EXPECT_EQ(softfilter_new(4, {8, 65535, 8, 8}, 0, 1, 65535), (Pixels{65535, 65535, 8, 8}));
}

TEST(Speckle, TableIsIndexedByTheLowByteOfTheShiftedValue) {
  // Shift 2: 800 gives 200, past the table's end; 1024 gives 256, whose low byte is 0.
  const Pixels table = {0, 5, 9};
  const auto joins = [&](std::uint16_t from, int difference, std::uint8_t shift) {
    const auto to = static_cast<std::uint16_t>(from + difference);
    const Case with{SpeckleThreshold::from_table(table.data(), shift, 3), SpeckleLimit::fixed(1)};
    return run(plain::speckle.full, image_of(2, {from, to}), with).pixels[0] != 0;
  };
  EXPECT_TRUE(joins(800, 9, 2));
  EXPECT_FALSE(joins(800, 10, 2));
  EXPECT_TRUE(joins(1024, 0, 2));
  EXPECT_FALSE(joins(1024, 1, 2));
  EXPECT_TRUE(joins(4, 5, 2));
  EXPECT_FALSE(joins(60000, 1, 16));
  EXPECT_FALSE(joins(60000, 1, 32));
  EXPECT_FALSE(joins(60000, 1, 255));
  EXPECT_TRUE(joins(60000, 5, 15)) << "60000 is 1 there";
}

TEST(Speckle, EmptyOrNullTableJoinsEqualValuesOnly) {
  Pixels table = {1000};
  for (const bool null : {false, true}) {
    Pixels pixels = {30, 30, 31, 32, 33, 33};
    Work work(6);
    const Case with{SpeckleThreshold::from_table(null ? nullptr : table.data(), 0, null ? 3 : 0),
                    SpeckleLimit::fixed(1)};
    EXPECT_EQ(run(plain::speckle.full, image_of(6, pixels), with).pixels, (Pixels{30, 30, 0, 0, 33, 33}));
    depth_api_softfilter(work, pixels.data(), nullptr, 6, 1, nullptr, 0, 3, 0, 1, 1, 1, 0, 1);
    EXPECT_EQ(pixels, (Pixels{30, 30, 0, 0, 33, 33}));
  }
}

TEST(Speckle, TheFirstRegionToReachAPixelOwnsIt) {
  // 40 reaches 50 but 50 does not reach 40: whichever is met first decides what is one region.
  const Pixels table = {1, 1, 1, 1, 12, 1};
  const Case with{SpeckleThreshold::from_table(table.data(), 3, 6), SpeckleLimit::fixed(1)};
  EXPECT_EQ(run(plain::speckle.full, image_of(2, {39, 50}), with).pixels, (Pixels{39, 50}));
  EXPECT_EQ(run(plain::speckle.full, image_of(2, {50, 39}), with).pixels, (Pixels{0, 0}));
  EXPECT_EQ(run(plain::speckle.full, image_of(3, {50, 39, 50}), with).pixels, (Pixels{0, 39, 50}));
}

TEST(Speckle, MapGivesTheLimitOfTheFirstPixelsCell) {
  // 5 x 5 with 2 x 2 cells of 2 x 2 pixels: column 4 falls into the next row's first cell, row 4 past the
  // end.
  const Pixels map = {2, 0, 1, 0};
  Image image(5, 5);
  image.at(0, 1) = image.at(0, 2) = 10;  // starts in the first cell
  image.at(0, 4) = 10;                   // cell 2
  image.at(2, 3) = 10;                   // cell 3
  image.at(4, 0) = image.at(4, 4) = 10;  // cells 4 and 6: the last entry
  Image expected = image;
  expected.at(0, 1) = expected.at(0, 2) = expected.at(0, 4) = 0;
  const Case with{SpeckleThreshold::fixed(0), {0, map.data(), 2, 2}};
  EXPECT_EQ(run(plain::speckle.full, image, with).pixels, expected.pixels);
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

TEST(Speckle, EveryPyramidFunctionPassesItsArgumentsOn) {
  Pixels table = {2, 9, 1, 7};
  Pixels map = {2, 0, 9, 1, 30, 3};
  const Image image = bench::noise(61, 40, 1, 24, 5);
  const auto by_table = SpeckleThreshold::from_table(table.data(), 3, 4);
  const SpeckleLimit by_map = {0, map.data(), 3, 2};
  const auto check = [&](const Case& with, const auto& call) {
    Image actual = image;
    Work work(image.pixels.size());
    call(work, actual.pixels.data());
    EXPECT_TRUE(actual.pixels == run(plain::speckle.pyramid, image, with).pixels);
    EXPECT_FALSE(actual.pixels == image.pixels);
  };
  check({by_table, SpeckleLimit::fixed(3), 5}, [&](unsigned char* work, std::uint16_t* depth) {
    softfilterPyramid_lut(work, depth, 61, 40, table.data(), 3, 4, 3, 5);
  });
  check({SpeckleThreshold::fixed(2), by_map, 5}, [&](unsigned char* work, std::uint16_t* depth) {
    filterSpecklePyramid(work, depth, map.data(), 61, 40, 2, 3, 2, 5);
  });
  check({by_table, by_map, 5}, [&](unsigned char* work, std::uint16_t* depth) {
    filterSpecklePyramid_lut(work, depth, map.data(), 61, 40, table.data(), 3, 4, 3, 2, 5);
  });
  Image half(30, 20);
  downSample(image.pixels.data(), half.pixels.data(), 61, 40);
  Image full = image;
  for (int row = 0; row < 20; ++row) {
    for (int col = 0; col < 30; ++col) {
      ASSERT_EQ(half.at(row, col), full.at(2 * row + 1, 2 * col + 1)) << row << ", " << col;
    }
  }
}

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

// -- Dispatch

struct Dispatched {
  int width, height, max_size;
  bool pyramid;
  int limit;
};

void expect_dispatch(const Dispatched& expected) {
  SCOPED_TRACE(testing::Message() << expected.width << "x" << expected.height << ", "
                                  << expected.max_size);
  // Squares of every size that the limits tell apart, on both grids.
  Image image(expected.width, expected.height);
  for (int row = 0; row + 1 < expected.height; row += 3) {
    for (int col = 0, length = 1; col + length < expected.width; col += length + 1, ++length) {
      std::fill_n(&image.at(row, col), length, static_cast<std::uint16_t>(800 + row));
      std::fill_n(&image.at(row + 1, col), length / 2, static_cast<std::uint16_t>(800 + row));
    }
  }
  const Case with{SpeckleThreshold::fixed(3), SpeckleLimit::fixed(expected.limit)};
  const Image wanted = run(expected.pyramid ? plain::speckle.pyramid : plain::speckle.full, image, with);
  Work work(image.pixels.size());
  depth_api_softfilter(work, image.pixels.data(), nullptr, image.width, image.height, nullptr, 0, 0, 3,
                       expected.max_size, 4, 4, 0, 1);
  EXPECT_TRUE(image.pixels == wanted.pixels);
}

TEST(Speckle, TheSizeChoosesFormAndLimit) {
  for (const Dispatched& expected : {Dispatched{848, 480, 80, false, 80},
                                     {640, 400, 80, true, 20},
                                     {424, 240, 20, true, 5},
                                     {20, 1280, 47, true, 11},
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
  EXPECT_EQ(Depth_MaxDiff, 16);
  const std::int32_t before = Depth_MaxSpeckleSize_640x480;
  Depth_MaxSpeckleSize_640x480 = 9;
  expect_dispatch({640, 400, 0, true, 9});
  expect_dispatch({424, 240, 0, true, 2});
  expect_dispatch({300, 200, 0, false, 9});
  Depth_MaxSpeckleSize_640x480 = before;
}

TEST(Speckle, MapModeTakesThePyramidAt1280And640Only) {
  Pixels map = {2, 9, 0, 3};
  for (const auto& [width, height, is_pyramid] :
       {std::tuple{640, 20, true}, {12, 1280, true}, {320, 240, false}, {424, 240, false}}) {
    Image image = bench::noise(width, height, 100, 104, 5);
    const Case with{SpeckleThreshold::fixed(1), {0, map.data(), 2, 2}};
    const Image wanted = run(is_pyramid ? plain::speckle.pyramid : plain::speckle.full, image, with);
    Work work(image.pixels.size());
    depth_api_softfilter(work, image.pixels.data(), map.data(), width, height, nullptr, 0, 0, 1, 77, 2, 2,
                         0, 0);
    EXPECT_TRUE(image.pixels == wanted.pixels) << width << "x" << height;
  }
  Pixels pixels(4, 3);
  depth_api_softfilter(nullptr, pixels.data(), map.data(), 2, 2, nullptr, 0, 0, 1, 77, 0, 3, 0, 0);
  depth_api_softfilter(nullptr, pixels.data(), nullptr, 2, 2, nullptr, 0, 0, 1, 77, 1, 1, 0, 0);
  EXPECT_EQ(pixels, Pixels(4, 3)) << "a map that does not fit, or none, leaves the image";
}

// -- Half-resolution path

TEST(Speckle, HalfResolutionPathKeepsTheOddBorder) {
  Image image = bench::stereo_scene(101, 75, 3);
  const Image before = image;
  Work work(image.pixels.size(), 1);
  softfilterOpt(work, image.pixels.data(), 101, 75, 40, 6, 0);
  for (int row = 0; row < 75; ++row) EXPECT_EQ(image.at(row, 100), Image(before).at(row, 100));
  for (int col = 0; col < 101; ++col) EXPECT_EQ(image.at(74, col), Image(before).at(74, col));
  EXPECT_FALSE(image.pixels == before.pixels);
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

  const Pixels flat = {1, 1, 1, 1, 1, 1, 50, 80, 1, 1, 1, 1};
  Pixels kept(area(8, 6));
  kept[2 * 8 + 6] = 59;  // near the half pixel to the left
  kept[2 * 8 + 7] = 71;  // near s
  kept[3 * 8 + 6] = 41;  // near the half pixel to the left
  kept[3 * 8 + 7] = 80;
  const Pixels before = kept;
  upSample_new(kept.data(), flat.data(), 4, 3, 10);
  for (const std::size_t i : {22u, 23u, 30u, 31u}) EXPECT_EQ(kept[i], before[i]) << i;
}

// -- An independent definition: what can be reached from the first pixel over pixels not yet taken

Pixels reached_from(const Image& image, const Case& with) {
  const auto rows = static_cast<std::size_t>(image.height);
  const auto cols = static_cast<std::size_t>(image.width);
  const auto threshold = [&](int value) {
    if (!with.threshold.by_table) return with.threshold.max_diff;
    const unsigned low = static_cast<unsigned>(value) >> with.threshold.shift & 0xff;
    return int{with.threshold.table[std::min<unsigned>(low, with.threshold.size - 1u)]};
  };
  Pixels result = image.pixels;
  std::vector<bool> taken(result.size());
  for (std::size_t seed = 0; seed < result.size(); ++seed) {
    if (taken[seed] || image.pixels[seed] == with.invalid) continue;
    std::vector<std::size_t> region = {seed};
    taken[seed] = true;
    for (std::size_t i = 0; i < region.size(); ++i) {
      const std::size_t at = region[i];
      const auto step = [&](bool inside, std::size_t next) {
        if (!inside || taken[next] || image.pixels[next] == with.invalid) return;
        if (std::abs(image.pixels[next] - image.pixels[at]) > threshold(image.pixels[at])) return;
        taken[next] = true;
        region.push_back(next);
      };
      step(at >= cols, at - cols);
      step(at % cols != 0, at - 1);
      step(at / cols + 1 < rows, at + cols);
      step(at % cols + 1 < cols, at + 1);
    }
    if (static_cast<std::int64_t>(region.size()) <= with.limit.max_size) {
      for (const std::size_t at : region) result[at] = with.invalid;
    }
  }
  return result;
}

TEST(Speckle, PlainFormEqualsReachability) {
  const Pixels table = {2, 9, 1, 30, 4, 17};
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    const int width = 1 + static_cast<int>(seed * 7 % 23);
    const Image image = bench::noise(width, 17, 1000, static_cast<std::uint16_t>(1003 + seed), seed);
    for (const SpeckleThreshold& threshold : {SpeckleThreshold::fixed(static_cast<int>(seed / 8)),
                                              SpeckleThreshold::from_table(table.data(), 3, 6)}) {
      const Case with{threshold, SpeckleLimit::fixed(1 + static_cast<int>(seed % 9)), 1001};
      EXPECT_EQ(run(plain::speckle.full, image, with).pixels, reached_from(image, with)) << seed;
    }
  }
}

// -- Every level equals the plain form

class SpeckleVectors : public LevelTest {
 protected:
  static const SpeckleKernels& kernels() { return LevelTest::kernels().speckle; }

  void expect_equal(const Image& image, const Case& with, std::size_t offset = 0) const {
    SCOPED_TRACE(testing::Message() << image.width << "x" << image.height << ", table "
                                    << with.threshold.by_table << ", max_diff " << with.threshold.max_diff
                                    << ", max_size " << with.limit.max_size << ", invalid "
                                    << with.invalid);
    ASSERT_TRUE(run(kernels().full, image, with, offset).pixels ==
                run(plain::speckle.full, image, with).pixels);
    if (image.width < 2 || image.height < 2) return;
    ASSERT_TRUE(run(kernels().pyramid, image, with, offset).pixels ==
                run(plain::speckle.pyramid, image, with).pixels);
  }
};

FILTERPROCESSOR_VECTOR_LEVELS(SpeckleVectors);

/// Random cases: the random numbers of one case, and tables and maps that live as long.
class RandomCase {
 public:
  explicit RandomCase(std::uint32_t seed) : random_(seed) {}
  int pick(int low, int high) { return random_.integer(low, high); }
  template <typename T>
  T one_of(std::initializer_list<T> values) {
    return random_.pick(values);
  }
  bool chance(int percent) { return pick(1, 100) <= percent; }

  Image image(int width, int height) {
    const int low = one_of({1, 1000, 32700, 65000});
    const int span = one_of({0, 1, 3, 10, 60, 500});
    Image image =
        bench::noise(width, height, static_cast<std::uint16_t>(low),
                     static_cast<std::uint16_t>(low + span), static_cast<std::uint32_t>(pick(0, 99999)));
    const int kind = pick(0, 3);
    if (kind == 1) image = bench::stereo_scene(width, height, static_cast<std::uint32_t>(pick(0, 9)));
    if (kind == 2) {  // rectangles, for long runs
      for (int k = 0; k < 12; ++k) {
        const int top = pick(0, height - 1), left = pick(0, width - 1);
        const auto value = static_cast<std::uint16_t>(one_of({0, low, low + span, low + 5}));
        for (int y = top; y <= std::min(height - 1, top + pick(0, height)); ++y) {
          std::fill(&image.at(y, left), &image.at(y, 0) + pick(left, width), value);
        }
      }
    }
    const int holes = one_of({0, 5, 60});
    for (auto& pixel : image.pixels) pixel = chance(holes) ? std::uint16_t{0} : pixel;
    return image;
  }

  Case parameters(int width, int height) {
    Case with{SpeckleThreshold::fixed(one_of({-3, 0, 1, 2, 5, 40, 300, 65535, 2000000000})),
              SpeckleLimit::fixed(one_of({-1, 0, 1, 2, 5, 20, 100, 1 << 30}))};
    if (chance(50)) {
      table_.resize(static_cast<std::size_t>(one_of({1, 2, 7, 8, 9, 16, 17, 32, 33, 200, 255})));
      const int largest = one_of({2, 20, 200, 65535});
      for (auto& entry : table_) entry = static_cast<std::uint16_t>(pick(0, largest));
      with.threshold = SpeckleThreshold::from_table(
          chance(3) ? nullptr : table_.data(),
          static_cast<std::uint8_t>(one_of({0, 1, 2, 4, 7, 9, 12, 15, 16, 200})),
          static_cast<std::uint8_t>(chance(3) ? 0 : table_.size()));
    }
    if (chance(30)) {
      const int cols = pick(1, std::min(width, 9)), rows = pick(1, std::min(height, 9));
      map_.resize(area(cols, rows));
      for (auto& entry : map_) entry = static_cast<std::uint16_t>(one_of({0, 1, 3, 30, 65535}));
      with.limit = {0, map_.data(), static_cast<std::size_t>(cols), static_cast<std::size_t>(rows)};
    }
    with.invalid = static_cast<std::uint16_t>(one_of({0, 0, 1, 1001, 65535}));
    return with;
  }

 private:
  Random random_;
  Pixels table_;
  Pixels map_;
};

TEST_P(SpeckleVectors, EqualsPlainOnSmallImages) {
  for (std::uint32_t seed = 0; seed < 4000; ++seed) {
    RandomCase random(seed);
    const int width = random.pick(1, 70), height = random.pick(1, 70);
    const Image image = random.image(width, height);
    expect_equal(image, random.parameters(width, height), seed % 5);
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

TEST_P(SpeckleVectors, EqualsPlainOnLargeAndLongImages) {
  for (std::uint32_t seed = 0; seed < 150; ++seed) {
    RandomCase random(seed);
    const auto [width, height] =
        random.one_of<std::pair<int, int>>({{random.pick(60, 700), random.pick(60, 300)},
                                            {random.pick(2000, 20000), random.pick(1, 5)},
                                            {random.pick(1, 5), random.pick(2000, 20000)},
                                            {64 * random.pick(1, 8), random.pick(30, 200)},
                                            {32767, random.pick(1, 3)}});
    const Image image = random.image(width, height);
    expect_equal(image, random.parameters(width, height), seed % 5);
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

TEST_P(SpeckleVectors, EqualsPlainOnScenesAndHardImages) {
  const Pixels table = bench::scene_table();
  const Pixels map = {80, 5, 300, 0, 20, 65535};
  for (const Image& image :
       {bench::stereo_scene(848, 480, 1), bench::stereo_scene(321, 203, 2), bench::checkerboard(300, 100),
        bench::comb(301, 101), bench::spiral(333, 200), bench::ramp(400, 150, 20),
        bench::ramp(400, 150, 2), bench::noise(300, 200, 1, 65535, 1),
        bench::noise(300, 200, 500, 1400, 1), Image(500, 90), Image(500, 90, 1000)}) {
    for (const SpeckleThreshold& threshold :
         {SpeckleThreshold::fixed(80), SpeckleThreshold::from_table(table.data(), 9, 7),
          SpeckleThreshold::from_table(table.data(), 3, 7)}) {
      for (const SpeckleLimit& limit :
           {SpeckleLimit::fixed(80), SpeckleLimit::fixed(100000), SpeckleLimit{0, map.data(), 3, 2}}) {
        expect_equal(image, {threshold, limit});
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_P(SpeckleVectors, HalfResolutionKernelsEqualPlain) {
  for (std::uint32_t seed = 0; seed < 1500; ++seed) {
    RandomCase random(seed);
    const int width = random.pick(2, 150), height = random.pick(2, 20);
    const Image full = random.image(width, height);
    const auto stride = static_cast<std::size_t>(width), half_width = stride / 2;
    const auto half_height = static_cast<std::size_t>(height) / 2;
    Pixels half(half_width * half_height), wanted_half(half.size());
    plain::speckle.downsample(full.pixels.data(), stride, wanted_half.data(), half_width, half_height);
    kernels().downsample(full.pixels.data(), stride, half.data(), half_width, half_height);
    ASSERT_EQ(half, wanted_half) << seed;

    for (auto& pixel : half) pixel = random.chance(20) ? std::uint16_t{0} : pixel;
    const int max_diff = random.one_of({-1, 0, 1, 5, 60, 65534, 65535, 100000});
    Image image = full, wanted = full;
    plain::speckle.upsample(wanted.pixels.data(), stride, half.data(), half_width, half_height, max_diff);
    kernels().upsample(image.pixels.data(), stride, half.data(), half_width, half_height, max_diff);
    ASSERT_EQ(image.pixels, wanted.pixels) << seed;
  }
}

}  // namespace
}  // namespace filterprocessor
