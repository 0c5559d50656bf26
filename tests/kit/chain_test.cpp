// Chains as texts, and what is known of the filters that a chain may name.
#include "kit/chain/chain.h"

#include <gtest/gtest.h>

#include "kit/chain/chain_file.h"
#include "kit/chain/configuration.h"
#include "kit/common/suggestions.h"
#include "refusal.h"

namespace kit {
namespace {

using Texts = std::vector<std::string>;

const auto kSchema = parse_schema(
    "count, integer, -5, 10, 1, 3, x\nratio, float, 0.1, 1, 0.01, 0.5, x\nsmooth, bool, 0, 1, 1, 1, x\n"
    "limit, uint32_t, 1, 65535, 1, 100, x\n");

std::string refusal(std::string_view text) {
  return refusal(Error::Kind::bad_request, [&] {
    const Step step = parse_step(text);
    configuration_values(step.filter, step.values.value_or(Values{}), kSchema);
  });
}

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

TEST(Chain, RefusesMalformedRequests) {
  const std::pair<const char*, const char*> cases[] = {
      {":count=1", "no filter name in \":count=1\"; expected [TAG=]NAME or [TAG=]NAME:key=value,..."},
      {"F:count=1,count=1", "F: count is given twice"},
      {"F:cuont=1", "unknown key cuont; did you mean count?"},
      {"F:count=-6", "count=-6 is out of range; expected -5 to 10"},
      {"F:count=11", "count=11 is out of range; expected -5 to 10"},
      {"F:ratio=0.0999", "ratio=0.0999 is out of range; expected 0.1 to 1"},
      {"F:smooth=2", "smooth=2 is not 0 or 1"},
      {"F:limit=1.0", "limit=1.0 is not a whole number of at most 32 bits"}};
  for (const auto& [text, complaint] : cases) EXPECT_EQ(refusal(text), complaint);
  for (const char* pair : {"count", "=1", "count=", ""})
    EXPECT_EQ(refusal(concat("F:smooth=1,", pair)),
              concat("F: \"", pair, "\" is not of the form key=value"));
}

TEST(Chain, ChecksTheSyntaxOfValuesByType) {
  for (const char* value : {"7", "-5", "+7", "10"}) EXPECT_EQ(refusal(concat("F:count=", value)), "");
  for (const char* value : {"x", "1.5", "1e3", "0x10", " 1", "1 ", "2147483648", "+-1", "--1"}) {
    EXPECT_EQ(refusal(concat("F:count=", value)),
              concat("count=", value, " is not a whole number of at most 32 bits"));
  }
  for (const char* value : {"1", ".5", "1e-1", "+.2", "1.00000001"})
    EXPECT_EQ(refusal(concat("F:ratio=", value)), "");
  for (const char* value : {"nan", "inf", "1e999", "0.5x", "+"}) {
    EXPECT_EQ(refusal(concat("F:ratio=", value)), concat("ratio=", value, " is not a number"));
  }
}

TEST(Suggestions, CountEditsAndOfferTheNearest) {
  EXPECT_EQ(edit_distance("", "abc"), 3u);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3u);
  const Texts names = {"HoleFillingFilter", "TemporalFilter", "width", "dst_width"};
  EXPECT_EQ(suggest("HoleFilling", names), "did you mean HoleFillingFilter?");
  EXPECT_EQ(suggest("hat", {"cat", "bat", "dog"}), "did you mean cat or bat?");
  EXPECT_EQ(suggest("quite another", names),
            "known: HoleFillingFilter, TemporalFilter, width, dst_width");
  EXPECT_EQ(suggest("any", {}), "there is none");
}

TEST(Chain, IsTheSameAsTextAndAsFile) {
  ChainFile chain = parse_chain("a=F:y=2,x=1.5\n\n G ; H:", "text");
  std::string texts;
  for (const Step& step : parse_chain(chain_json(chain), "file").steps) texts += step_text(step) + '|';
  EXPECT_EQ(texts, "a=F:x=1.5,y=2|G|H:|");
  chain.steps[0].enabled = false;
  EXPECT_TRUE(refusal(Error::Kind::bad_request, [&] {
                step_text(chain.steps[0]);
              }).starts_with("a is switched off"));
}

}  // namespace
}  // namespace kit
