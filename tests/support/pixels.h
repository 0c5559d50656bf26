#ifndef FILTERPROCESSOR_TESTS_SUPPORT_PIXELS_H
#define FILTERPROCESSOR_TESTS_SUPPORT_PIXELS_H

#include <cstdint>
#include <vector>

namespace filterprocessor {

using Pixels = std::vector<std::uint16_t>;

}  // namespace filterprocessor

#endif
