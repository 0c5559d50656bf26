// Does the work of the benchmark's rows with the plain form and with the best level, once each and between marks that
// block_counter.c sees, and says what it did: number, row, form and pixels, separated by tabs. A kernel that has rows of
// several sizes is run at the first.
#include <cstdio>
#include <set>
#include <unistd.h>

#include "rows.h"

namespace filterprocessor::bench {

namespace {

constexpr int kEndMark = -999;
constexpr int kFirstMark = -1000;

bool is_new(const std::string& name) {
  static std::set<std::string> names;
  return names.insert(name).second;
}

}  // namespace

Row::Row(std::string name, Image image)
    : name_(is_new(name) ? std::move(name) : ""),
      image_(std::make_shared<const Image>(std::move(image))) {}

void Row::add(const std::string& form, bool /*fresh*/, std::function<void(std::uint16_t*)> work) {
  static int number = 0;
  std::vector<std::uint16_t> pixels;
  // The first calls decide what the kernel is to do and find memory; the last is counted.
  for (int use = 0; use < 4; ++use) {
    pixels = image_->pixels;
    if (use == 3) close(kFirstMark - number);
    work(pixels.data());
  }
  close(kEndMark);
  std::printf("%d\t%s, %dx%d\t%s\t%zu\n", number++, name_.c_str(), image_->width, image_->height,
              form.c_str(), image_->size());
  std::fflush(stdout);
}

Row& Row::add_levels(std::function<void(const KernelSet&, std::uint16_t*)> work) {
  if (name_.empty()) return *this;
  for (const KernelSet* set : {&kernel_sets().front(), &kernel_sets().back()}) {
    add(set->level, true, [&](std::uint16_t* pixels) { work(*set, pixels); });
  }
  return *this;
}

Row& Row::add_levels_reading(
    std::function<std::function<void(const std::uint16_t*)>(const KernelSet&)> prepare) {
  if (name_.empty()) return *this;
  for (const KernelSet* set : {&kernel_sets().front(), &kernel_sets().back()}) {
    add(set->level, false, prepare(*set));
  }
  return *this;
}

}  // namespace filterprocessor::bench

int main() { filterprocessor::bench::add_all_rows(); }
