#include "standin/arguments.h"

#include <algorithm>
#include <cmath>

#include "standin/refusal.h"

using nlohmann::json;

namespace standin {
namespace {

bool isWholeNumber(const json& value) {
  if (value.is_number_integer())
    return value.is_number_unsigned() || value.get<std::int64_t>() >= 0;
  if (!value.is_number_float()) return false;
  const auto number = value.get<double>();
  return number >= 0 && number < 0x1p63 && number == std::floor(number);
}

void checkType(const Parameter& parameter, const json& value) {
  const auto require = [&](bool fits, const char* wanted) {
    if (!fits)
      throw Refusal("The argument " + inQuotes(parameter.name) + " must be " + wanted + ".");
  };
  switch (parameter.type) {
    case Parameter::Type::Text: return require(value.is_string(), "a string");
    case Parameter::Type::Number:
      return require(isWholeNumber(value), "a whole number, 0 or above");
    case Parameter::Type::Flag: return require(value.is_boolean(), "true or false");
  }
}

void refuseUnknown(std::string_view tool, const std::vector<Parameter>& parameters,
                   const json& given) {
  for (const auto& [name, value] : given.items()) {
    if (std::ranges::find(parameters, name, &Parameter::name) != parameters.end()) continue;
    throw Refusal("There is no argument " + inQuotes(name) + "; " + std::string(tool) + " takes " +
                  (parameters.empty() ? "none" : listInQuotes(parameters, &Parameter::name)) + ".");
  }
}

}  // namespace

Arguments::Arguments(std::string_view tool, const std::vector<Parameter>& parameters,
                     const json& given) {
  refuseUnknown(tool, parameters, given);
  for (const Parameter& parameter : parameters) {
    const auto found = given.find(parameter.name);
    const bool leftOut = found == given.end() || found->is_null();
    const json& value = leftOut ? parameter.otherwise : *found;
    if (value.is_null()) throw Refusal("The argument " + inQuotes(parameter.name) + " is missing.");
    checkType(parameter, value);
    values_[parameter.name] = value;
  }
}

const std::string& Arguments::text(const char* name) const {
  return values_.at(name).get_ref<const std::string&>();
}

std::uint64_t Arguments::number(const char* name) const {
  return values_.at(name).get<std::uint64_t>();
}

bool Arguments::flag(const char* name) const {
  return values_.at(name).get<bool>();
}

}  // namespace standin
