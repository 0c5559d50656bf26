#include "filterprocessor/margin.h"

#include <algorithm>
#include <limits>

#include "support/levels.h"

namespace filterprocessor {
namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

/// A row or column, and which of its pixels the rule clears.
struct Line {
  long long length, limit, near, far;
  bool inside_band;  ///< whether no more is cleared than the border has
  long long first = -1, last = -1;

  void see(long long at) {
    if (first < 0) first = at;
    last = at;
  }
  bool loses(long long at) const {
    const bool near_run = at >= first && at < first + near && (!inside_band || at < limit);
    const bool far_run = at <= last && at > last - far && (!inside_band || at > length - limit);
    return (first < limit && near_run) || (last > length - limit && far_run);
  }
};

Pixels expected_of(const Pixels& image, int width, int height, const MarginRule& rule) {
  const auto columns = static_cast<std::size_t>(width);
  std::vector<Line> across, along(columns, {height, rule.limit_y, rule.margin_y, rule.margin_y, true});
  for (int y = 0; y < height; ++y) {
    const std::uint16_t* const own = rule.chamfer;
    across.push_back(own ? Line{width, rule.limit_x, own[2 * y], own[2 * y + 1], true}
                         : Line{width, rule.limit_x, rule.left, rule.right, false});
  }
  const auto at = [](std::size_t i) { return static_cast<long long>(i); };
  for (std::size_t i = 0; i < image.size(); ++i) {
    if (image[i] == 0) continue;
    across[i / columns].see(at(i % columns));
    along[i % columns].see(at(i / columns));
  }
  Pixels result = image;
  for (std::size_t i = 0; i < image.size(); ++i) {
    if (across[i / columns].loses(at(i % columns)) || along[i % columns].loses(at(i / columns)))
      result[i] = 0;
  }
  return result;
}

void expect_rule(const Pixels& image, int width, int height, const MarginRule& rule) {
  const Pixels expected = expected_of(image, width, height, rule);
  Pixels actual = image;
  plain::margin.clear(actual.data(), width, height, rule);
  ASSERT_EQ(actual, expected) << width << " x " << height << ", margins " << rule.left << ' '
                              << rule.right << ' ' << rule.margin_y << ", limits " << rule.limit_x << ' '
                              << rule.limit_y << (rule.chamfer != nullptr ? ", by row" : "");
}

TEST(Margin, PlainFormFollowsTheRule) {
  for (std::uint32_t seed = 0; seed < 2000; ++seed) {
    Source source(seed);
    const Sides sides = any_sides(source);
    AnyMargins any = any_margins(source, sides);
    if (!any.chamfer.empty()) any.rule.chamfer = any.chamfer.data();
    expect_rule(any_pixels(source, sides), static_cast<int>(sides.width), static_cast<int>(sides.height),
                any.rule);
    if (testing::Test::HasFatalFailure()) FAIL() << "seed " << seed;
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
  Source source(9);
  Pixels image(64 * 40);
  for (auto& pixel : image) pixel = source.flag();
  const auto expect = [&](const MarginRule& rule, auto filter) {
    Pixels pixels = image;
    EXPECT_EQ(filter(pixels.data()), 0);
    EXPECT_EQ(pixels, expected_of(image, 64, 40, rule));
  };
  Pixels table(80);
  for (auto& margin : table) margin = static_cast<std::uint16_t>(source.integer(0, 9));
  expect({.left = 5, .right = 5, .limit_x = 20},
         [](std::uint16_t* data) { return depth_api_horizontal_margin_filter(data, 64, 40, 5, 20); });
  expect({5, 5, 20, 3, 9},
         [](std::uint16_t* data) { return depth_api_margin_filter(data, 64, 40, 5, 3, 20, 9); });
  expect({.limit_x = 20, .margin_y = 3, .limit_y = 9, .chamfer = table.data()}, [&](std::uint16_t* data) {
    return depth_api_margin_filter_with_chamfer(data, 64, 40, 3, 20, 9, table.data());
  });
  // Now the right gap is the wider one.
  for (std::size_t y = 0; y < 40; ++y) std::fill_n(&image[y * 64 + 50], 14, std::uint16_t{0});
  expect({5, 7, 20, 3, 9},
         [](std::uint16_t* data) { return depth_api_margin_filter_asym(data, 64, 40, 7, 5, 3, 20, 9); });
}

using Ends = std::pair<int, int>;

/// The numbers of pixels that row 5 loses at the left and at the right in an image of 100 x 10 pixels, whose
/// sampled rows 2, 4, 6 and 8 are valid from end to end, the others all over.
Ends asymmetric_margins(Ends row_2, Ends other_rows) {
  Pixels image(1000, 5);
  for (const int y : {2, 4, 6, 8}) {
    const auto [first, last] = y == 2 ? row_2 : other_rows;
    for (int x = 0; x < 100; ++x) {
      if (x < first || x > last) image[static_cast<std::size_t>(100 * y + x)] = 0;
    }
  }
  EXPECT_EQ(depth_api_margin_filter_asym(image.data(), 100, 10, 9, 4, 0, 20, 0), 0);
  const auto row = image.begin() + 500;
  const auto left = std::find(row, row + 100, 5) - row;
  return {left, 100 - left - std::count(row, row + 100, 5)};
}

TEST(MarginInterface, TheSideWithTheWiderGapGetsTheLargeMargin) {
  const auto margins = [](int first, int last) {
    return asymmetric_margins({first, last}, {first, last});
  };
  EXPECT_EQ(margins(40, 97), Ends(9, 4));
  EXPECT_EQ(margins(2, 59), Ends(4, 9));
  EXPECT_EQ(margins(10, 89), Ends(4, 4)) << "gaps of 40 and 44";
  EXPECT_EQ(margins(12, 90), Ends(4, 4)) << "48 is not above 1.2 x 40";
  EXPECT_EQ(margins(10, 88), Ends(4, 4)) << "nor the other way round";
  EXPECT_EQ(margins(0, 99), Ends(4, 9)) << "gaps of 0 and 4";
  const Ends empty = {1, 0};
  EXPECT_EQ(asymmetric_margins(empty, {38, 99}), Ends(4, 4)) << "gaps of 114 and 103";
  EXPECT_EQ(asymmetric_margins(empty, {42, 99}), Ends(9, 4)) << "gaps of 126 and 103";
  Pixels row(64, 5);
  EXPECT_EQ(depth_api_margin_filter_asym(row.data(), 64, 1, 9, 4, 0, 20, 0), 0);
  EXPECT_EQ(std::ranges::count(row, 5), 64 - 4 - 9) << "a single row";
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
