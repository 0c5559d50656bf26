#include "filterprocessor/hole_filling.h"

#include "scenes.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

using Fill = HoleFillingKernels::Fill;

class HoleFillingLevel : public LevelTest {};
class HoleFillingVectors : public LevelTest {};

constexpr Fill* HoleFillingKernels::*kModes[] = {&HoleFillingKernels::top, &HoleFillingKernels::smaller,
                                                 &HoleFillingKernels::larger};

void expect_equal(const HoleFillingKernels& plain, const HoleFillingKernels& fast, const Pixels& image,
                  std::size_t width, std::size_t height) {
  for (std::size_t mode = 0; mode < std::size(kModes); ++mode) {
    // Exactly sized, so that the address sanitizer sees an access past either end.
    Pixels expected = image;
    Pixels actual = image;
    (plain.*kModes[mode])(expected.data(), width, height);
    (fast.*kModes[mode])(actual.data(), width, height);
    ASSERT_EQ(actual, expected) << width << " x " << height << ", mode " << mode;
  }
}

TEST_P(HoleFillingVectors, EqualsThePlainFormAtEverySizeUpTo70x70) {
  std::mt19937 random(1);
  for (std::size_t height = 0; height <= 70; ++height) {
    for (std::size_t width = 1; width <= 70; ++width) {
      const Pixels image =
          random_pixels(random, width * height, static_cast<unsigned>(width * 7 + height * 13) % 101);
      expect_equal(plain().hole_filling, kernels().hole_filling, image, width, height);
    }
  }
}

TEST_P(HoleFillingVectors, EqualsThePlainFormOnRowsOfManyVectors) {
  std::mt19937 random(2);
  for (const std::size_t width : {std::size_t{848}, std::size_t{2048 + 40}, std::size_t{5000}}) {
    for (const unsigned percent : {2u, 50u, 100u}) {
      expect_equal(plain().hole_filling, kernels().hole_filling,
                   random_pixels(random, width * 7, percent), width, 7);
    }
  }
}

TEST_P(HoleFillingLevel, FillsFromTheTopDownToTheLastRow) {
  // Columns: one value in row 2, nothing at all, a value that stays.
  Pixels image = {0, 0, 9, 0, 0, 9, 500, 0, 9, 0, 0, 0, 0, 0, 7};
  kernels().hole_filling.top(image.data(), 3, 5);
  EXPECT_EQ(image, (Pixels{0, 0, 9, 0, 0, 9, 500, 0, 9, 500, 0, 9, 500, 0, 7}));
}

/// Three rows of 16; the middle one holds what the test gives.
struct ThreeRows {
  Pixels pixels = Pixels(48);
  std::uint16_t* middle = pixels.data() + 16;
  std::uint16_t& above(int x) { return pixels[static_cast<std::size_t>(x)]; }
  std::uint16_t& below(int x) { return pixels[static_cast<std::size_t>(x) + 32]; }
};

TEST_P(HoleFillingLevel, AHoleAtAGroupStartTakesItsLeftNeighbourAlone) {
  for (const int x : {8, 9}) {
    ThreeRows rows;
    std::fill_n(rows.middle, 16, std::uint16_t{1000});
    rows.middle[x] = 0;
    rows.middle[x - 1] = 300;
    rows.above(x) = 700;
    rows.below(x) = 900;
    ThreeRows smaller{rows.pixels};
    kernels().hole_filling.larger(rows.pixels.data(), 16, 3);
    EXPECT_EQ(rows.pixels[static_cast<std::size_t>(16 + x)], x == 8 ? 300 : 900);
    kernels().hole_filling.smaller(smaller.pixels.data(), 16, 3);
    EXPECT_EQ(smaller.pixels[static_cast<std::size_t>(16 + x)], 300);
  }
}

TEST_P(HoleFillingLevel, TheLargestValueIsAHoleWhenTheSmallerIsKept) {
  ThreeRows rows;
  rows.middle[3] = rows.above(3) = 65535;  // no smaller candidate: written as 0
  rows.middle[5] = 65535;
  rows.below(5) = 65534;
  ThreeRows larger{rows.pixels};
  kernels().hole_filling.smaller(rows.pixels.data(), 16, 3);
  EXPECT_EQ(rows.middle[3], 0);
  EXPECT_EQ(rows.middle[5], 65534);
  EXPECT_EQ(rows.above(3), 65535) << "the first row never changes";
  kernels().hole_filling.larger(larger.pixels.data(), 16, 3);
  EXPECT_EQ(larger.pixels[16 + 3], 65535);
}

FILTERPROCESSOR_EVERY_LEVEL(HoleFillingLevel);
FILTERPROCESSOR_VECTOR_LEVELS(HoleFillingVectors);

TEST(HoleFillingInterface, SmallImagesSucceedUnchangedAndUnknownModesFail) {
  Pixels image(32);
  image[0] = 5;
  const Pixels before = image;
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_SMALLER), 0);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_LARGER), 0);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 32, 1, DEPTH_API_HOLE_FILL_TOP), 0);
  for (const int mode : {0, 1, 2}) {
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, 16, 0, mode), 0);
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, 0, 16, mode), 0);
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, -8, 16, mode), 0);
  }
  EXPECT_EQ(image, before);
  Pixels three_rows(48, 7);
  three_rows[20] = 0;  // any mode would fill it
  for (const int mode : {-1, 3}) {
    EXPECT_EQ(depth_api_hole_filling_filter(three_rows.data(), 16, 3, mode), -1);
    EXPECT_EQ(three_rows[20], 0);
  }
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_TOP), 0);
  EXPECT_EQ(image[16], 5);
}

}  // namespace
}  // namespace filterprocessor
