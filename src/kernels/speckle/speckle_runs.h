/// The runs of an image as bits.
#ifndef FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_RUNS_H
#define FILTERPROCESSOR_KERNELS_SPECKLE_SPECKLE_RUNS_H

#include "kernels/speckle/speckle_links.h"
#include "kernels/speckle/work_space.h"

namespace filterprocessor::FILTERPROCESSOR_LEVEL {
namespace {

inline constexpr std::size_t kBatchWords = 64;
inline constexpr std::size_t kBatch = kBatchWords * kWordBits;

/// Keeps the first bit of each stretch that begins with a bit of `starts`. The sum carries through a
/// stretch from its first bit on, so a bit is the first exactly when nothing is carried into it.
[[maybe_unused]] void keep_first_bits(const std::uint64_t* bits, const std::uint64_t* starts,
                                      std::size_t words, std::uint64_t* first) {
  std::uint64_t stretches[64];
  for (std::size_t i = 0; i < words; ++i) stretches[i] = bits[i] | ~starts[i];
  add_long(bits, stretches, first, words);
  for (std::size_t i = 0; i < words; ++i) first[i] = bits[i] & (starts[i] | ~first[i]);
}

/// Lists the positions of the set bits of up to 64 words, and up to 64 values of no meaning.
/// @return the number of set bits
[[maybe_unused]] std::size_t list_positions(const std::uint64_t* bits, std::size_t words,
                                            std::uint16_t* to) {
  std::size_t listed = 0;
  for (std::uint64_t left = nonzero_words(bits, words); left != 0; left &= left - 1) {
    const auto i = static_cast<std::size_t>(__builtin_ctzll(left));
    listed += write_positions(bits[i], static_cast<std::uint16_t>(i * kWordBits), to + listed);
  }
  return listed;
}

/// Bits for the pixels of a batch.
struct BatchMasks {
  std::uint64_t up[kBatchWords];     // linked with the pixel above, both ways
  std::uint64_t above[kBatchWords];  // the pixel above begins a run
  std::uint64_t to_left[kBatchWords], from_left[kBatchWords], to_up[kBatchWords], from_up[kBatchWords];
  bool joined_back;  // the first pixel is linked with the one before the batch, both ways
};

/// The runs of an image of `width` x `height` pixels without gaps between rows, taken as one sequence:
/// pixels with links both ways to their left continue a run, and so do invalid pixels beside each other.
/// Runs end with a row and with a batch of kBatch pixels.
template <typename Threshold>
class Runs {
 public:
  Runs(const std::uint16_t* pixels, std::size_t width, std::size_t height, std::uint16_t invalid,
       const Threshold& threshold)
      : pixels_(pixels, width, width * height, invalid),
        threshold_(threshold),
        width_(width),
        count_(width * height) {}

  bool take_space(WorkSpace& work) {
    const std::size_t lead = width_ / kWordBits + 2;  // words of pixels before the first
    const std::size_t count = lead + (count_ + kWordBits - 1) / kWordBits;
    valid_ = work.take<std::uint64_t>(count);
    starts_ = work.take<std::uint64_t>(count);
    before_ = work.take<std::uint32_t>(count);
    if constexpr (!Threshold::symmetric) {
      right_ = work.take<std::uint64_t>(count);
      down_ = work.take<std::uint64_t>(count);
    }
    first_run_ = work.take<std::uint32_t>(batches() + 1);
    if (first_run_ == nullptr) return false;
    first_run_[0] = 0;
    for (std::size_t i = 0; i < lead; ++i) {
      valid_[i] = starts_[i] = 0;
      if constexpr (!Threshold::symmetric) right_[i] = down_[i] = 0;
    }
    valid_ += lead;
    starts_ += lead;
    before_ += lead;
    if constexpr (!Threshold::symmetric) right_ += lead, down_ += lead;
    return true;
  }

  std::size_t pixels() const { return count_; }
  std::size_t batches() const { return (count_ + kBatch - 1) / kBatch; }
  std::size_t words_in(std::size_t batch) const {
    const std::size_t left = (count_ + kWordBits - 1) / kWordBits - batch * kBatchWords;
    return left < kBatchWords ? left : kBatchWords;
  }

  std::size_t pixels_in(std::size_t batch) const {
    const std::size_t left = count_ - batch * kBatch;
    return left < kBatch ? left : kBatch;
  }

  /// The first run of a batch that has been counted, or of the next.
  std::uint32_t first_run(std::size_t batch) const { return first_run_[batch]; }
  std::uint32_t count() const { return first_run_[batches()]; }
  const std::uint64_t* valid(std::size_t batch) const { return valid_ + batch * kBatchWords; }
  /// The bits of the pixels of a batch that begin a run.
  const std::uint64_t* starts(std::size_t batch) const { return starts_ + batch * kBatchWords; }

  /// Compares the pixels of a batch with their neighbours, after those of the batches before.
  void scan(std::size_t batch, BatchMasks& masks) {
    const std::size_t first = batch * kBatchWords;
    const std::size_t words = words_in(batch);
    std::uint64_t left[kBatchWords];
    std::uint64_t row_starts[kBatchWords];
    for (std::size_t i = 0; i < words; ++i) {
      const LinkBits link = pixels_.links((first + i) * kWordBits, threshold_);
      valid_[first + i] = link.valid;
      left[i] = link.left;
      masks.up[i] = link.up;
      row_starts[i] = 0;
      if constexpr (!Threshold::symmetric) {
        right_[first + i] = link.right;
        down_[first + i] = link.down;
      }
    }
    const std::size_t end = words * kWordBits;
    for (std::size_t x = (width_ - batch * kBatch % width_) % width_; x < end; x += width_) {
      row_starts[x / kWordBits] |= std::uint64_t{1} << (x % kWordBits);
    }

    const std::uint64_t* const valid = valid_ + first;
    std::uint64_t* const starts = starts_ + first;
    for (std::size_t i = 0; i < words; ++i) {
      const std::uint64_t left_valid = valid[i] << 1 | (valid - 1)[i] >> 63;
      const std::uint64_t both = valid[i] & left_valid & ~row_starts[i];
      std::uint64_t joined = left[i] & both;
      if constexpr (!Threshold::symmetric) {
        const std::uint64_t back = right_[first + i] << 1 | (right_ + first - 1)[i] >> 63;
        masks.to_left[i] = joined & ~back;
        masks.from_left[i] = both & back & ~left[i];
        joined &= back;
      }
      starts[i] = ~joined & (valid[i] | left_valid | row_starts[i]);
    }
    // What is behind the last pixel begins no run.
    starts[words - 1] &= ~std::uint64_t{0} >> (end - pixels_in(batch));
    masks.joined_back = (valid[0] & ~starts[0] & 1) != 0;
    starts[0] |= 1;

    std::uint64_t above_valid[kBatchWords];
    shift_down_a_row(valid_, first, words, above_valid);
    shift_down_a_row(starts_, first, words, masks.above);
    if constexpr (Threshold::symmetric) {
      for (std::size_t i = 0; i < words; ++i) masks.up[i] &= valid[i] & above_valid[i];
    } else {
      std::uint64_t down[kBatchWords];
      shift_down_a_row(down_, first, words, down);
      for (std::size_t i = 0; i < words; ++i) {
        const std::uint64_t both = valid[i] & above_valid[i];
        const std::uint64_t up = masks.up[i];
        masks.to_up[i] = both & up & ~down[i];
        masks.from_up[i] = both & down[i] & ~up;
        masks.up[i] = both & up & down[i];
      }
    }
  }

  /// Numbers the runs of a batch that has been scanned.
  void count_runs(std::size_t batch) {
    std::uint32_t run = first_run_[batch];
    for (std::size_t i = 0; i < words_in(batch); ++i) {
      before_[batch * kBatchWords + i] = run;
      run += static_cast<std::uint32_t>(__builtin_popcountll(starts(batch)[i]));
    }
    first_run_[batch + 1] = run;
  }

  /// The run of a pixel in a batch that has been counted.
  std::uint32_t at(std::size_t pixel) const {
    const std::size_t word = pixel / kWordBits;
    return before_[word] - 1 +
           static_cast<std::uint32_t>(__builtin_popcountll(starts_[word] << (~pixel & 63)));
  }

 private:
  /// The bits of the pixels above, for `words` words.
  void shift_down_a_row(const std::uint64_t* bits, std::size_t word, std::size_t words,
                        std::uint64_t* to) const {
    const auto at = static_cast<std::ptrdiff_t>(word * kWordBits) - static_cast<std::ptrdiff_t>(width_);
    const std::uint64_t* from = bits + (at >> 6);
    const int low = static_cast<int>(at & 63);
    for (std::size_t i = 0; i < words; ++i) to[i] = from[i] >> low | from[i + 1] << 1 << (63 - low);
  }

  PixelWords pixels_;
  Threshold threshold_;
  std::size_t width_;
  std::size_t count_;

  // In the work space: bits for all pixels, with words for a row before the first.
  std::uint64_t* valid_ = nullptr;
  std::uint64_t* starts_ = nullptr;
  std::uint64_t* right_ = nullptr;      // links from pixels to the right
  std::uint64_t* down_ = nullptr;       // and to those below
  std::uint32_t* before_ = nullptr;     // runs that begin before the word
  std::uint32_t* first_run_ = nullptr;  // by batch
};

}  // namespace
}  // namespace filterprocessor::FILTERPROCESSOR_LEVEL

#endif
