#include "target.h"

#include <cstdio>
#include <cstdlib>

namespace filterprocessor::fuzz {

void require(bool holds, std::string_view what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

}  // namespace filterprocessor::fuzz

extern "C" {

// Frames may claim more pixels than any machine has memory for; that is refused as it is without the
// sanitizer.
const char* __asan_default_options() { return "allocator_may_return_null=1:max_allocation_size_mb=1024"; }

// Filters print the host's errors.
int LLVMFuzzerInitialize(int*, char***) { return std::freopen("/dev/null", "w", stdout) == nullptr; }

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  filterprocessor::Source input({data, size});
  filterprocessor::fuzz::run_input(input);
  return 0;
}

}  // extern "C"
