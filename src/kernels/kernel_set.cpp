#include "kernels/kernel_set.h"

#include <cstdlib>

namespace filterprocessor {

namespace plain {
extern const KernelSet kernels;
}
#if defined(__x86_64__)
namespace avx2 {
extern const KernelSet kernels;
}
namespace avx512 {
extern const KernelSet kernels;
}
#elif defined(__aarch64__)
namespace neon {
extern const KernelSet kernels;
}
#endif

const KernelSet* kernel_set(Level level) {
  switch (level) {
    case Level::scalar:
      return &plain::kernels;
#if defined(__x86_64__)
    case Level::avx2:
      return &avx2::kernels;
    case Level::avx512:
      return &avx512::kernels;
#elif defined(__aarch64__)
    case Level::neon:
      return &neon::kernels;
#endif
    default:
      return nullptr;
  }
}

namespace {
// Set by the dynamic linker's call of this file's initialiser; until then (a static constructor of a
// program that links the library in) the function below chooses for itself.
const KernelSet* active = nullptr;
const KernelSet* choose() { return kernel_set(choose_level(std::getenv("FILTERPROCESSOR_CPU"))); }
[[maybe_unused]] const bool chosen = (active = choose()) != nullptr;
}  // namespace

const KernelSet& active_kernels() { return active != nullptr ? *active : *choose(); }

}  // namespace filterprocessor
