#include "filterprocessor/hole_filling.h"

#include "support/levels.h"

namespace filterprocessor {
namespace {

class HoleFillingLevel : public LevelTest {};
FILTERPROCESSOR_EVERY_LEVEL(HoleFillingLevel);

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
