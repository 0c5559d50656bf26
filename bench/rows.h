/// A row of the benchmark's table: one piece of work on one image, done by several forms (the plain form,
/// a level, a peer, memcpy of the frame). All forms of all rows run interleaved in one process, so their
/// ratios hold even where absolute times move with the machine.
#ifndef FILTERPROCESSOR_BENCH_ROWS_H
#define FILTERPROCESSOR_BENCH_ROWS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kernels/kernel_set.h"
#include "scenes.h"

namespace filterprocessor::bench {

/// The sizes that every kernel is measured at.
struct Size {
  int width;
  int height;
};
inline constexpr Size kSizes[] = {{640, 400}, {848, 480}, {1280, 800}};

/// What the plain form is called in the table; levels go by their names.
inline constexpr std::string_view kPlain = "plain";

class Row {
 public:
  /// @param name   what the work is, e.g. "holes nearest, room"
  /// @param image  what the work is done on; every timed call starts from a fresh copy
  Row(std::string name, Image image);

  /// Work in place on the copy. `form` is a column of the table.
  Row& add(const std::string& form, std::function<void(std::uint16_t* pixels)> work);
  /// Work that only reads the image and writes elsewhere.
  Row& add_reading(const std::string& form, std::function<void(const std::uint16_t* pixels)> work);
  /// One form per level that the machine runs.
  Row& add_levels(std::function<void(const KernelSet& kernels, std::uint16_t* pixels)> work);
  /// The same for work that only reads; `prepare` makes a level's work.
  Row& add_levels_reading(
      std::function<std::function<void(const std::uint16_t* pixels)>(const KernelSet& kernels)> prepare);
  const Image& image() const { return *image_; }

 private:
  void add(const std::string& form, bool fresh, std::function<void(std::uint16_t* pixels)> work);

  std::string name_;
  std::shared_ptr<const Image> image_;
};

/// Changes the order.
double median(std::vector<double>& values);

/// Each registers the rows of one kernel family.
void add_disparity_rows();
void add_hole_filling_rows();
void add_margin_rows();
void add_resize_rows();
void add_smoothing_rows();
void add_speckle_rows();
inline void add_all_rows() {
  add_disparity_rows();
  add_hole_filling_rows();
  add_margin_rows();
  add_resize_rows();
  add_smoothing_rows();
  add_speckle_rows();
}

/// Measures a chain of filters at the active level and prints a table for each of two sizes.
void print_chain_tables();

}  // namespace filterprocessor::bench

#endif
