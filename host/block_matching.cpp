#include "block_matching.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace devhost {

namespace {

constexpr std::uint32_t kRadius = 3;  // of the window
constexpr std::uint32_t kWindow = 2 * kRadius + 1;
constexpr std::uint32_t kCensusRadius = 3;
static_assert(kRadius + kCensusRadius == kMatchMargin);

struct Offset {
  int x, y;
};
// Every second pixel of the outermost rows and columns, and the diagonals beside the centre.
constexpr Offset kNeighbours[16] = {{-3, -3}, {-1, -3}, {1, -3}, {3, -3},  // above
                                    {-3, 3},  {-1, 3},  {1, 3},  {3, 3},   // below
                                    {-3, -1}, {-3, 1},  {3, -1}, {3, 1},   // beside
                                    {-1, -1}, {1, -1},  {-1, 1}, {1, 1}};

// Bit n says whether neighbour n is darker. The rim that has not all neighbours stays 0.
std::vector<std::uint16_t> census(const std::vector<std::uint8_t>& image, std::uint32_t width,
                                  std::uint32_t height) {
  std::vector<std::uint16_t> codes(image.size());
  for (std::uint32_t row = kCensusRadius; row < height - kCensusRadius; ++row) {
    const std::size_t start = std::size_t{row} * width + kCensusRadius;
    for (int bit = 0; bit < 16; ++bit) {
      const std::ptrdiff_t step =
          kNeighbours[bit].y * static_cast<std::ptrdiff_t>(width) + kNeighbours[bit].x;
      const std::uint8_t* centre = image.data() + start;
      const std::uint8_t* other = centre + step;
      std::uint16_t* code = codes.data() + start;
      for (std::uint32_t x = 0; x < width - 2 * kCensusRadius; ++x) {
        code[x] = static_cast<std::uint16_t>(code[x] | (other[x] < centre[x]) << bit);
      }
    }
  }
  return codes;
}

inline std::int16_t bit_count(std::uint16_t bits) {
  const auto pairs = static_cast<std::uint16_t>(bits - ((bits >> 1) & 0x5555));
  const auto fours = static_cast<std::uint16_t>((pairs & 0x3333) + ((pairs >> 2) & 0x3333));
  const auto bytes = static_cast<std::uint16_t>((fours + (fours >> 4)) & 0x0F0F);
  return static_cast<std::int16_t>((bytes + (bytes >> 8)) & 0x1F);
}

// Costs of one image row at a time: rows of windows come out, and each pixel pair is compared once. Only
// columns at which the whole search lies inside the image are looked at.
class CostRows {
 public:
  CostRows(const std::vector<std::uint8_t>& left, const std::vector<std::uint8_t>& right,
           const MatchSettings& settings)
      : disparities_(settings.disparities + 1),
        stride_(settings.width + 2 * kMatchMargin),
        columns_(settings.width - settings.disparities),
        padded_(columns_ + 2 * kRadius),
        left_(census(left, stride_, settings.height + 2 * kMatchMargin)),
        right_(census(right, stride_, settings.height + 2 * kMatchMargin)),
        recent_(std::size_t{kWindow} * disparities_ * padded_),
        column_sums_(std::size_t{disparities_} * padded_),
        totals_(std::size_t{disparities_} * columns_) {
    for (std::uint32_t row = 0; row < kWindow - 1; ++row) take_in();
  }

  // The window costs of the next row.
  void next() {
    take_in();
    for (std::uint32_t d = 0; d < disparities_; ++d) {
      const std::int16_t* sums = column_sums_.data() + std::size_t{d} * padded_;
      std::int16_t* total = totals_.data() + std::size_t{d} * columns_;
      for (std::uint32_t x = 0; x < columns_; ++x) {
        int sum = 0;
        for (std::uint32_t i = 0; i < kWindow; ++i) sum += sums[x + i];
        total[x] = static_cast<std::int16_t>(sum);
      }
    }
  }

  // The costs of disparity d; element 0 is column `disparities` of the image.
  const std::int16_t* of(std::uint32_t d) const { return totals_.data() + std::size_t{d} * columns_; }
  std::uint32_t columns() const { return columns_; }

 private:
  void take_in() {
    const std::size_t first_column = kCensusRadius + disparities_ - 1;
    const std::size_t row = std::size_t{row_ + kCensusRadius} * stride_ + first_column;
    std::int16_t* oldest = recent_.data() + std::size_t{row_ % kWindow} * disparities_ * padded_;
    for (std::uint32_t d = 0; d < disparities_; ++d) {
      const std::uint16_t* a = left_.data() + row;
      const std::uint16_t* b = right_.data() + row - d;
      std::int16_t* cost = oldest + std::size_t{d} * padded_;
      std::int16_t* sums = column_sums_.data() + std::size_t{d} * padded_;
      for (std::uint32_t x = 0; x < padded_; ++x) {
        const std::int16_t fresh = bit_count(static_cast<std::uint16_t>(a[x] ^ b[x]));
        sums[x] = static_cast<std::int16_t>(sums[x] + fresh - cost[x]);
        cost[x] = fresh;
      }
    }
    ++row_;
  }

  std::uint32_t disparities_, stride_, columns_, padded_;
  std::uint32_t row_ = 0;
  std::vector<std::uint16_t> left_, right_;
  std::vector<std::int16_t> recent_;       // the last rows, by row, disparity and column
  std::vector<std::int16_t> column_sums_;  // over those rows
  std::vector<std::int16_t> totals_;
};

constexpr std::int16_t kNone = std::numeric_limits<std::int16_t>::max();

// The best disparity of every column.
struct Winners {
  explicit Winners(std::size_t columns) : cost(columns), disparity(columns) {}
  void clear() { std::fill(cost.begin(), cost.end(), kNone); }
  void offer(std::int16_t d, const std::int16_t* costs, std::size_t first, std::size_t count) {
    std::int16_t* best = cost.data() + first;
    std::int16_t* at = disparity.data() + first;
    for (std::size_t x = 0; x < count; ++x) {
      const bool better = costs[x] < best[x];
      best[x] = better ? costs[x] : best[x];
      at[x] = better ? d : at[x];
    }
  }
  std::vector<std::int16_t> cost, disparity;
};

// The best cost of each column away from the winner and its two neighbours.
void find_rivals(const CostRows& costs, const Winners& winners, std::int16_t disparities,
                 std::vector<std::int16_t>& rivals) {
  std::fill(rivals.begin(), rivals.end(), kNone);
  const std::int16_t* winner = winners.disparity.data();
  std::int16_t* rival = rivals.data();
  for (std::int16_t d = 0; d <= disparities; ++d) {
    const std::int16_t* cost = costs.of(static_cast<std::uint32_t>(d));
    for (std::uint32_t x = 0; x < costs.columns(); ++x) {
      const bool apart = (winner[x] - d > 1) | (d - winner[x] > 1);
      const std::int16_t candidate = apart ? cost[x] : kNone;
      rival[x] = candidate < rival[x] ? candidate : rival[x];
    }
  }
}

}  // namespace

Match match_blocks(const std::vector<std::uint8_t>& left, const std::vector<std::uint8_t>& right,
                   const MatchSettings& settings) {
  const std::uint32_t last = settings.disparities;
  const std::size_t count = std::size_t{settings.width} * settings.height;
  Match match{std::vector<float>(count), std::vector<std::uint8_t>(count)};
  CostRows costs(left, right, settings);
  Winners from_left(costs.columns()), from_right(settings.width);
  std::vector<std::int16_t> rivals(costs.columns());

  for (std::uint32_t row = 0; row < settings.height; ++row) {
    costs.next();
    from_left.clear();
    from_right.clear();
    for (std::uint32_t d = 0; d <= last; ++d) {
      from_left.offer(static_cast<std::int16_t>(d), costs.of(d), 0, costs.columns());
      from_right.offer(static_cast<std::int16_t>(d), costs.of(d), last - d, costs.columns());
    }
    find_rivals(costs, from_left, static_cast<std::int16_t>(last), rivals);

    const std::size_t start = std::size_t{row} * settings.width + last;
    for (std::uint32_t x = 0; x < costs.columns(); ++x) {
      const std::int16_t winner = from_left.disparity[x];
      const auto d = static_cast<std::uint32_t>(winner);
      if (d == 0 || d == last) continue;
      const int best = from_left.cost[x], rival = rivals[x];
      if (rival * 100 <= best * (100 + settings.uniqueness)) continue;
      if (std::abs(from_right.disparity[x + last - d] - winner) > 1) continue;
      const int before = costs.of(d - 1)[x] - best, after = costs.of(d + 1)[x] - best;
      if (before + after == 0) continue;
      // The lowest point of the parabola through the three costs.
      const float slope = static_cast<float>(before - after), bend = static_cast<float>(before + after);
      match.disparity[start + x] = static_cast<float>(winner) + 0.5f * slope / bend;
      const int confidence = std::clamp((rival - best) * 16 / rival, 1, 15);
      match.confidence[start + x] = static_cast<std::uint8_t>(confidence);
    }
  }
  return match;
}

}  // namespace devhost
