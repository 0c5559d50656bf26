// Reading of configuration schemas: what can be read says the same when it is written and read again.
#include "kit/schema/schema.h"

#include "kit/common/error.h"
#include "target.h"

namespace filterprocessor::fuzz {

namespace {

std::string written(const std::vector<kit::SchemaParameter>& parameters) {
  std::string text;
  for (const kit::SchemaParameter& p : parameters) {
    for (const std::string* field : {&p.name, &p.type, &p.min, &p.max, &p.step, &p.default_value}) {
      text += *field + ", ";
    }
    text += p.description + '\n';
  }
  return text;
}

}  // namespace

void run_input(Source& input) {
  const auto bytes = input.take_rest();
  std::vector<kit::SchemaParameter> parameters;
  try {
    parameters = kit::parse_schema({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  } catch (const kit::Error&) {
    return;
  }
  require(kit::parse_schema(written(parameters)) == parameters, "a schema says the same when read again");
}

}  // namespace filterprocessor::fuzz
