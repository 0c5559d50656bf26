#include "filterprocessor/hole_filling.h"

#include "support/levels.h"

namespace filterprocessor {
namespace {

TEST(HoleFilling, FillsFromTheTopDownToTheLastRow) {
  // Columns: one value in row 2, nothing at all, a value that stays.
  Pixels image = {0, 0, 9, 0, 0, 9, 500, 0, 9, 0, 0, 0, 0, 0, 7};
  plain::hole_filling.top(image.data(), 3, 5);
  EXPECT_EQ(image, (Pixels{0, 0, 9, 0, 0, 9, 500, 0, 9, 500, 0, 9, 500, 0, 7}));
}

/// What fills a hole in the middle of three rows, between 300 at its left, 700 above and 900 below.
int filled(HoleFillingKernels::Fill* fill, std::size_t x) {
  Pixels rows(48, 1000);
  std::uint16_t* const hole = &rows[16 + x];
  hole[0] = 0;
  hole[-1] = 300;
  hole[-16] = 700;
  hole[16] = 900;
  fill(rows.data(), 16, 3);
  return *hole;
}

TEST(HoleFilling, AHoleAtAGroupStartTakesItsLeftNeighbourAlone) {
  EXPECT_EQ(filled(plain::hole_filling.larger, 8), 300);
  EXPECT_EQ(filled(plain::hole_filling.larger, 9), 900);
  EXPECT_EQ(filled(plain::hole_filling.smaller, 8), 300);
  EXPECT_EQ(filled(plain::hole_filling.smaller, 9), 300);
}

TEST(HoleFilling, TheLargestValueIsAHoleWhenTheSmallerIsKept) {
  Pixels rows(48);
  rows[16 + 3] = rows[3] = 65535;  // no smaller candidate: written as 0
  rows[16 + 5] = 65535;
  rows[32 + 5] = 65534;
  Pixels larger = rows;
  plain::hole_filling.smaller(rows.data(), 16, 3);
  EXPECT_EQ(rows[16 + 3], 0);
  EXPECT_EQ(rows[16 + 5], 65534);
  EXPECT_EQ(rows[3], 65535) << "the first row never changes";
  plain::hole_filling.larger(larger.data(), 16, 3);
  EXPECT_EQ(larger[16 + 3], 65535);
}

TEST(HoleFillingInterface, SmallImagesSucceedUnchangedAndUnknownModesFail) {
  Pixels image(48, 7);
  image[20] = 0;  // in the last of two rows or the middle one of three
  const Pixels before = image;
  for (const int mode : {0, 1, 2}) {
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, 16, 0, mode), 0);
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, 0, 16, mode), 0);
    EXPECT_EQ(depth_api_hole_filling_filter(nullptr, -8, 16, mode), 0);
    EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 48, 1, mode), 0);
  }
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_SMALLER), 0);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_LARGER), 0);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 3, -1), -1);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 3, 3), -1);
  EXPECT_EQ(image, before);
  EXPECT_EQ(depth_api_hole_filling_filter(image.data(), 16, 2, DEPTH_API_HOLE_FILL_TOP), 0);
  EXPECT_EQ(image[20], 7);
}

}  // namespace
}  // namespace filterprocessor
