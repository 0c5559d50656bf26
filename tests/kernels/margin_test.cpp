#include "filterprocessor/margin.h"

#include <algorithm>
#include <limits>

#include "scenes.h"
#include "support/levels.h"
#include "support/random_image.h"

namespace filterprocessor {
namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

/// The rule by pixel: which runs, all found in the image as it was, cover it.
Pixels expected_of(const Pixels& image, int width, int height, const MarginRule& rule) {
  struct Ends {
    long long first = -1, last = -1;
    void see(int at) { first = first < 0 ? at : first, last = at; }
  };
  std::vector<Ends> rows(static_cast<std::size_t>(height)), columns(static_cast<std::size_t>(width));
  const auto for_each_pixel = [&](auto visit) {
    for (int y = 0, i = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x, ++i) {
        visit(x, y, static_cast<std::size_t>(i), rows[static_cast<std::size_t>(y)],
              columns[static_cast<std::size_t>(x)]);
      }
    }
  };
  for_each_pixel([&](int x, int y, std::size_t i, Ends& row, Ends& column) {
    if (image[i] != 0) row.see(x), column.see(y);
  });
  // Near and far runs of a line: the part that is cleared begins or ends with the border band or not.
  const auto cleared = [](long long at, Ends line, long long length, long long limit, long long near,
                          long long far, bool inside_band) {
    return (line.first < limit && at >= line.first && at < line.first + near &&
            (!inside_band || at < limit)) ||
           (line.last > length - limit && at <= line.last && at > line.last - far &&
            (!inside_band || at > length - limit));
  };
  Pixels result = image;
  for_each_pixel([&](int x, int y, std::size_t i, Ends& row, Ends& column) {
    const bool by_row = rule.chamfer != nullptr;
    const int left = by_row ? rule.chamfer[2 * y] : rule.left;
    const int right = by_row ? rule.chamfer[2 * y + 1] : rule.right;
    if (cleared(x, row, width, rule.limit_x, left, right, by_row) ||
        cleared(y, column, height, rule.limit_y, rule.margin_y, rule.margin_y, true)) {
      result[i] = 0;
    }
  });
  return result;
}

class MarginLevel : public LevelTest {
 protected:
  /// Images are exactly sized, so that the address sanitizer sees an access past either end.
  void expect_rule(const Pixels& image, int width, int height, const MarginRule& rule) const {
    const Pixels expected = expected_of(image, width, height, rule);
    Pixels actual = image;
    kernels().margin.clear(actual.data(), width, height, rule);
    ASSERT_EQ(actual, expected) << width << " x " << height << ", margins " << rule.left << ' '
                                << rule.right << ' ' << rule.margin_y << ", limits " << rule.limit_x
                                << ' ' << rule.limit_y << (rule.chamfer != nullptr ? ", by row" : "");
  }

  /// One pixel in `rarity` valid, and a rule of all kinds of numbers.
  void expect_random_rule(Random& random, int width, int height) const {
    Pixels image(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const int rarity = random.pick({1, 2, 8, 40, 400});
    for (auto& pixel : image) pixel = random.one_in(rarity) ? random.pick<std::uint16_t>({1, 65535}) : 0;
    const auto number = [&](int usual) {
      return random.one_in(10) ? random.pick({kMin, kMin + 1, -1, 0, 1, 2, 65536, kMax - 1, kMax})
                               : random.integer(0, usual);
    };
    Pixels by_row(2 * static_cast<std::size_t>(height));
    for (auto& margin : by_row) {
      margin =
          random.one_in(20) ? std::uint16_t{65535} : static_cast<std::uint16_t>(random.integer(0, 9));
    }
    expect_rule(image, width, height,
                {.left = number(random.pick({9, 70})),
                 .right = number(random.pick({9, 70})),
                 .limit_x = number(width + 3),
                 .margin_y = number(random.pick({5, 70})),
                 .limit_y = number(height + 3),
                 .chamfer = random.one_in(3) ? by_row.data() : nullptr});
  }
};
FILTERPROCESSOR_EVERY_LEVEL(MarginLevel);

TEST_P(MarginLevel, FollowsTheRuleAtEverySizeUpTo70x70) {
  Random random(1);
  for (int height = 1; height <= 70; ++height) {
    for (int width = 1; width <= 70; ++width) {
      expect_random_rule(random, width, height);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(MarginLevel, FollowsTheRuleInLargeImages) {
  Random random(2);
  for (int round = 0; round < 60; ++round) {
    expect_random_rule(random, random.integer(71, 900), random.integer(1, 90));
    // Bands of up to 2048 rows and of more, columns that fill less than a vector.
    expect_random_rule(random, random.integer(30, 75), random.integer(2000, 2300));
    if (HasFatalFailure()) return;
  }
  const Pixels wide(3 * 70001, 1);
  expect_rule(wide, 70001, 3, {.left = 66000, .right = 2, .limit_x = 66000});
  expect_rule(wide, 3, 70001, {.margin_y = 66000, .limit_y = 66000});
}

TEST(MarginInterface, ChecksInOrderAndChangesNothing) {
  Pixels image(64, 5);
  const Pixels before = image;
  std::uint16_t* const data = image.data();
  const Pixels table(16, 3);
  EXPECT_EQ(depth_api_horizontal_margin_filter(nullptr, 8, 8, 7, 6), -1);
  EXPECT_EQ(depth_api_horizontal_margin_filter(data, 8, 8, 7, 6), -2);
  EXPECT_EQ(depth_api_horizontal_margin_filter(data, 8, 0, 7, 6), -2);
  EXPECT_EQ(depth_api_margin_filter(nullptr, 8, 8, 7, 1, 6, 6), -1);
  EXPECT_EQ(depth_api_margin_filter(data, 8, 8, 7, 1, 6, 6), -2);
  EXPECT_EQ(depth_api_margin_filter(data, 8, 8, 1, 7, 6, 6), -2);
  EXPECT_EQ(depth_api_margin_filter_asym(nullptr, 8, 8, 4, 6, 1, 6, 6), -1);
  EXPECT_EQ(depth_api_margin_filter_asym(data, 8, 8, 7, 6, 1, 6, 6), -2);
  EXPECT_EQ(depth_api_margin_filter_asym(data, 8, 8, 4, 7, 1, 6, 6), -2);
  EXPECT_EQ(depth_api_margin_filter_asym(data, 8, 8, 4, 6, 7, 6, 6), -2);
  EXPECT_EQ(depth_api_margin_filter_asym(data, 8, 8, 4, 6, 1, 6, 6), -3);
  EXPECT_EQ(depth_api_margin_filter_with_chamfer(nullptr, 8, 8, 7, 6, 6, nullptr), -1);
  EXPECT_EQ(depth_api_margin_filter_with_chamfer(data, 8, 8, 7, 6, 6, nullptr), -2);
  EXPECT_EQ(depth_api_margin_filter_with_chamfer(data, 8, 8, 1, 6, 6, nullptr), -3);
  for (const int none : {0, -1, kMin}) {
    EXPECT_EQ(depth_api_horizontal_margin_filter(data, none, 8, 6, 6), 0);
    EXPECT_EQ(depth_api_horizontal_margin_filter(data, 8, none, 6, 6), 0);
    EXPECT_EQ(depth_api_margin_filter(data, none, 8, 6, 6, 6, 6), 0);
    EXPECT_EQ(depth_api_margin_filter_asym(data, none, 8, 6, 6, 6, 6, 6), 0);
    EXPECT_EQ(depth_api_margin_filter_asym(data, 8, none, 6, 6, 6, 6, 6), 0);
    EXPECT_EQ(depth_api_margin_filter_with_chamfer(data, 8, none, 6, 6, 6, table.data()), 0);
  }
  EXPECT_EQ(image, before);
  EXPECT_EQ(depth_api_margin_filter(data, 8, 8, 6, 6, 6, 6), 0) << "a margin may equal its limit";
  EXPECT_NE(image, before);
}

TEST(MarginInterface, HandsEveryArgumentToItsPlace) {
  Random random(9);
  const Pixels image = random.pixels(64 * 40, 900, 60, 2);
  const auto expect_from = [](const Pixels& input, const MarginRule& rule, auto filter) {
    Pixels pixels = input;
    EXPECT_EQ(filter(pixels.data()), 0);
    EXPECT_EQ(pixels, expected_of(input, 64, 40, rule));
  };
  const auto expect = [&](const MarginRule& rule, auto filter) { expect_from(image, rule, filter); };
  Pixels table(80);
  for (auto& margin : table) margin = static_cast<std::uint16_t>(random.integer(0, 9));
  expect({.left = 5, .right = 5, .limit_x = 20},
         [](std::uint16_t* data) { return depth_api_horizontal_margin_filter(data, 64, 40, 5, 20); });
  expect({5, 5, 20, 3, 9},
         [](std::uint16_t* data) { return depth_api_margin_filter(data, 64, 40, 5, 3, 20, 9); });
  expect({.limit_x = 20, .margin_y = 3, .limit_y = 9, .chamfer = table.data()}, [&](std::uint16_t* data) {
    return depth_api_margin_filter_with_chamfer(data, 64, 40, 3, 20, 9, table.data());
  });
  Pixels asymmetric = image;  // the right gap is the wider one
  for (std::size_t y = 0; y < 40; ++y) std::fill_n(&asymmetric[y * 64 + 50], 14, std::uint16_t{0});
  expect_from(asymmetric, {5, 7, 20, 3, 9}, [](std::uint16_t* data) {
    return depth_api_margin_filter_asym(data, 64, 40, 7, 5, 3, 20, 9);
  });
}

/// 100 x 10 pixels; the sampled rows 2, 4, 6 and 8 are valid from `first` to `last`, the others all over.
class AsymmetricMargins : public testing::Test {
 protected:
  static void fill(Pixels& image, std::initializer_list<int> rows, int first, int last) {
    for (const int y : rows) {
      for (int x = 0; x < 100; ++x) {
        image[static_cast<std::size_t>(100 * y + x)] = x >= first && x <= last ? 5 : 0;
      }
    }
  }
  /// The numbers of pixels that row 5 loses at the left and at the right.
  static std::pair<int, int> margins(Pixels image) {
    EXPECT_EQ(depth_api_margin_filter_asym(image.data(), 100, 10, 9, 4, 0, 20, 0), 0);
    const auto row = image.begin() + 500;
    const auto first = std::find(row, row + 100, 5) - row;
    const auto valid = std::count(row, row + 100, 5);
    return {static_cast<int>(first), static_cast<int>(100 - first - valid)};
  }
  Pixels image_ = Pixels(1000, 5);
};

TEST_F(AsymmetricMargins, TheSideWithTheWiderGapGetsTheLargeOne) {
  fill(image_, {2, 4, 6, 8}, 40, 97);
  EXPECT_EQ(margins(image_), (std::pair{9, 4}));
  fill(image_, {2, 4, 6, 8}, 2, 59);
  EXPECT_EQ(margins(image_), (std::pair{4, 9}));
  fill(image_, {2, 4, 6, 8}, 10, 89);
  EXPECT_EQ(margins(image_), (std::pair{4, 4})) << "gaps of 40 and 44";
  fill(image_, {2, 4, 6, 8}, 12, 90);
  EXPECT_EQ(margins(image_), (std::pair{4, 4})) << "48 is not above 1.2 x 40";
  fill(image_, {2, 4, 6, 8}, 10, 88);
  EXPECT_EQ(margins(image_), (std::pair{4, 4})) << "nor the other way round";
}

TEST_F(AsymmetricMargins, AnEmptyRowCountsAtTheRightOnly) {
  EXPECT_EQ(margins(image_), (std::pair{4, 9})) << "gaps of 0 and 4";
  fill(image_, {2}, 1, 0);
  fill(image_, {4, 6, 8}, 38, 99);
  EXPECT_EQ(margins(image_), (std::pair{4, 4})) << "gaps of 114 and 103";
  fill(image_, {4, 6, 8}, 42, 99);
  EXPECT_EQ(margins(image_), (std::pair{9, 4})) << "gaps of 126 and 103";
}

TEST(MarginChamfer, RunsOfRowsEndWithTheBand) {
  Pixels row(200, 0);
  std::fill(row.begin() + 65, row.begin() + 134, std::uint16_t{7});
  const Pixels table = {10, 10};
  ASSERT_EQ(depth_api_margin_filter_with_chamfer(row.data(), 200, 1, 0, 70, 0, table.data()), 0);
  EXPECT_EQ(std::find(row.begin(), row.end(), 7) - row.begin(), 70);
  EXPECT_EQ(std::count(row.begin(), row.end(), 7), 131 - 70)
      << "131 is the first column of the right band";
}

TEST(MarginChamfer, TableFallsAlongAnArc) {
  const auto table = [](int count, int span, int first, int base, int second, int radius) {
    Pixels pairs(2 * static_cast<std::size_t>(count));
    EXPECT_EQ(depth_api_init_margin_chamfer(pairs.data(), span, count, first, base, second, radius), 0);
    return pairs;
  };
  EXPECT_EQ(table(8, 99, 1, 10, 2, 5),
            (Pixels{11, 12, 10, 11, 10, 11, 10, 11, 10, 10, 10, 11, 10, 11, 10, 11}));
  EXPECT_EQ(table(8, 4, 3, 1, 0, 0), (Pixels{4, 4, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2}));
  EXPECT_EQ(table(8, 40, 0, 1, 5, 0), (Pixels{1, 6, 1, 6, 1, 6, 1, 6, 1, 5, 1, 6, 1, 6, 1, 6}))
      << "half the span is the larger";
  EXPECT_EQ(table(4, 1, 7, 0, 0, 1), (Pixels{7, 7, 7, 7, 6, 6, 7, 7})) << "the root of -3 is 0";
  EXPECT_EQ(table(2, 1, kMax, kMax, kMin, 65536), (Pixels{65534, 65535, 65534, 65535})) << "wraps";
  std::uint16_t untouched = 5;
  EXPECT_EQ(depth_api_init_margin_chamfer(&untouched, 640, 0, 1, 1, 1, 1), 0);
  EXPECT_EQ(depth_api_init_margin_chamfer(&untouched, 640, kMin, 1, 1, 1, 1), 0);
  EXPECT_EQ(untouched, 5);
  EXPECT_EQ(depth_api_init_margin_chamfer(nullptr, 640, 0, 1, 1, 1, 1), -1);
}

}  // namespace
}  // namespace filterprocessor
