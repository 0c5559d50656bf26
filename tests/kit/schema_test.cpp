#include "kit/plugin/schema.h"

#include <gtest/gtest.h>

#include "kit/common/error.h"

namespace kit {
namespace {

TEST(Schema, ReadsFieldsWithAndWithoutBlanksAfterTheComma) {
  const auto parameters =
      parse_schema("ex_right, integer,-640, 640, 1, 0, extension on the right\nb,bool,0,1,1,0,x\n");
  ASSERT_EQ(parameters.size(), 2u);
  EXPECT_EQ(parameters[0],
            (SchemaParameter{"ex_right", "integer", "-640", "640", "1", "0", "extension on the right"}));
  EXPECT_EQ(parameters[1], (SchemaParameter{"b", "bool", "0", "1", "1", "0", "x"}));
}

TEST(Schema, KeepsTrailingBlanksOfADescriptionOnly) {
  const auto parameters = parse_schema("  a  ,  float  , 0.1 , 1 , 0.01 , 0.5 ,  two words ");
  ASSERT_EQ(parameters.size(), 1u);
  EXPECT_EQ(parameters[0], (SchemaParameter{"a", "float", "0.1", "1", "0.01", "0.5", "two words "}));
}

TEST(Schema, RefusesLinesThatAreNotSevenFieldsOfAKnownType) {
  EXPECT_THROW(parse_schema("a, integer, 0, 1, 1, 0"), Error);
  EXPECT_THROW(parse_schema("a, integer, 0, 1, 1, 0, one, two"), Error);
  EXPECT_THROW(parse_schema("a, double, 0, 1, 1, 0, text"), Error);
  EXPECT_THROW(parse_schema(", integer, 0, 1, 1, 0, text"), Error);
}

}  // namespace
}  // namespace kit
