#ifndef TESTS_KIT_REFUSAL_H
#define TESTS_KIT_REFUSAL_H

#include <string>

#include <gtest/gtest.h>

#include "kit/common/error.h"

namespace kit {

/// What the call fails with; empty when it does not.
template <typename Call>
std::string refusal(Error::Kind kind, Call call) {
  try {
    call();
  } catch (const Error& problem) {
    EXPECT_EQ(problem.kind(), kind) << problem.what();
    return problem.what();
  }
  return {};
}

}  // namespace kit

#endif
