#include "kit/schema/schema.h"

#include <gtest/gtest.h>

#include "kit/common/error.h"

namespace kit {
namespace {

TEST(Schema, ReadsSevenFieldsWithAndWithoutBlanks) {
  const std::vector<SchemaParameter> expected = {{"a", "float", "0.1", "1", "0.01", "0.5", "two words "},
                                                 {"b", "bool", "0", "1", "1", "0", "x"}};
  EXPECT_EQ(parse_schema("  a  ,  float  , 0.1 , 1 , 0.01 , 0.5 ,  two words \nb,bool,0,1,1,0,x\n"),
            expected);
  for (const char* line : {"a, integer, 0, 1, 1, 0", "a, integer, 0, 1, 1, 0, one, two",
                           "a, double, 0, 1, 1, 0, text", ", integer, 0, 1, 1, 0, text"}) {
    EXPECT_THROW(parse_schema(line), Error) << line;
  }
}

}  // namespace
}  // namespace kit
