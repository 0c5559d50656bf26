#ifndef TESTS_ZVFILTER_CHAIN_HANDLE_H
#define TESTS_ZVFILTER_CHAIN_HANDLE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zvfilter/zvfilter.h"

namespace zvfilter {

using Pixels = std::vector<std::uint16_t>;

struct DestroyChain {
  void operator()(zvf_chain* chain) const { zvf_chain_destroy(chain); }
};
using ChainHandle = std::unique_ptr<zvf_chain, DestroyChain>;

inline ChainHandle parse(const std::string& text) {
  zvf_error error = {};
  ChainHandle chain(zvf_chain_parse(text.c_str(), &error));
  EXPECT_NE(chain, nullptr) << error.message;
  return chain;
}

inline bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

inline std::vector<zvf_parameter> parameters_of(const std::string& filter) {
  std::vector<zvf_parameter> parameters;
  for (std::size_t i = 0; i < zvf_filter_count(); ++i) {
    if (zvf_filter_name(i) != filter) continue;
    for (zvf_parameter each; zvf_parameter_at(i, parameters.size(), &each);) parameters.push_back(each);
  }
  return parameters;
}

/// "key=value,..." in the order of the parameters.
inline std::string values_text(const std::string& filter, const std::vector<std::string>& values) {
  auto value = values.begin();
  std::string text;
  for (const zvf_parameter& each : parameters_of(filter)) {
    text.append(text.empty() ? "" : ",").append(each.name).append("=").append(*value++);
  }
  return text;
}

/// A chain for frames of this size, with the geometry of two cameras.
inline ChainHandle chain_for(const std::string& text, std::uint32_t width, std::uint32_t height) {
  ChainHandle chain = parse(text);
  zvf_input input = zvf_input_of(width, height);
  zvf_input_set_stereo(&input, 50, 600);
  EXPECT_EQ(zvf_chain_set_input(chain.get(), &input, nullptr), ZVF_OK);
  return chain;
}

inline Pixels run(const ChainHandle& chain, const Pixels& frame) {
  zvf_error error = {};
  zvf_input output = {};
  EXPECT_EQ(zvf_chain_output(chain.get(), &output, &error), ZVF_OK) << error.message;
  Pixels result(std::size_t{output.width} * output.height, 0xABCD);
  EXPECT_EQ(zvf_chain_run(chain.get(), frame.data(), 0, result.data(), 0, &error), ZVF_OK)
      << error.message;
  return result;
}

}  // namespace zvfilter

#endif
