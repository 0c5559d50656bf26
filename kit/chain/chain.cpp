#include "kit/chain/chain.h"

#include <algorithm>

#include "kit/common/error.h"
#include "kit/common/text.h"

namespace kit {

namespace {

bool is_word(std::string_view text) {
  const auto allowed = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-';
  };
  return !text.empty() && std::all_of(text.begin(), text.end(), allowed) &&
         !(text.front() >= '0' && text.front() <= '9');
}

}  // namespace

Values parse_values(std::string_view text) {
  Values values;
  if (text.empty()) return values;
  for (const std::string_view pair : split(text, ',')) {
    const auto equals = pair.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == pair.size()) {
      refuse('"', pair, "\" is not of the form key=value");
    }
    const std::string key(pair.substr(0, equals));
    const bool fresh = values.emplace(key, pair.substr(equals + 1)).second;
    if (!fresh) refuse_key(key, key, " is given twice");
  }
  return values;
}

Step parse_step(std::string_view text) {
  const auto colon = text.find(':');
  std::string_view name = text.substr(0, colon);
  Step step;
  if (const auto equals = name.find('='); equals != std::string_view::npos) {
    step.tag = name.substr(0, equals);
    name = name.substr(equals + 1);
  }
  step.filter = name;
  if (step.filter.empty()) {
    refuse("no filter name in \"", text, "\"; expected [TAG=]NAME or [TAG=]NAME:key=value,...");
  }
  if (colon == std::string_view::npos) return step;
  try {
    step.values = parse_values(text.substr(colon + 1));
  } catch (const Error& problem) {
    throw Error(problem.kind(), concat(step.filter, ": ", problem.what()), problem.place());
  }
  return step;
}

std::string step_text(const Step& step) {
  if (!step.enabled) {
    refuse(step.tag.empty() ? step.filter : step.tag,
           " is switched off, which only a chain file can say; remove the step or switch it on");
  }
  std::string text = step.tag.empty() ? step.filter : step.tag + '=' + step.filter;
  if (!step.values) return text;
  char separator = ':';
  for (const auto& [key, value] : *step.values) {
    text += concat(separator, key, '=', value);
    separator = ',';
  }
  return separator == ':' ? text + ':' : text;
}

std::optional<std::size_t> find_step(const Chain& chain, std::string_view name) {
  const auto only = [&](auto matches) -> std::optional<std::size_t> {
    const auto found = std::find_if(chain.begin(), chain.end(), matches);
    if (found == chain.end() || std::count_if(chain.begin(), chain.end(), matches) > 1)
      return std::nullopt;
    return static_cast<std::size_t>(found - chain.begin());
  };
  if (auto step = only([&](const Step& each) { return !name.empty() && each.tag == name; })) return step;
  if (auto step = only([&](const Step& each) { return each.filter == name; })) return step;
  const auto number = parse_unsigned(name);
  if (number && *number >= 1 && *number <= chain.size()) return *number - 1;
  return std::nullopt;
}

std::string step_name(const Chain& chain, std::size_t step) {
  const Step& each = chain[step];
  return concat("step ", step + 1, " (", each.tag.empty() ? each.filter : each.tag, ')');
}

void check_tags(const Chain& chain) {
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const std::string& tag = chain[i].tag;
    if (tag.empty()) continue;
    const Place place = {static_cast<int>(i), tag, ""};
    const auto complain = [&](const std::string& problem) {
      throw Error(Error::Kind::bad_request, concat("step ", i + 1, ": tag ", tag, ": ", problem), place);
    };
    if (!is_word(tag)) complain("expected a letter first, then letters, digits, _ and -");
    for (std::size_t j = 0; j < chain.size(); ++j) {
      if (j < i && chain[j].tag == tag) complain(concat("is the tag of step ", j + 1, " too"));
      if (j != i && chain[j].filter == tag) complain(concat("is the filter of step ", j + 1));
    }
  }
}

}  // namespace kit
