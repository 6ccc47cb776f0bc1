#include "standin/arguments.h"

#include <limits>

using nlohmann::json;

namespace standin {
namespace {

// The number, when it is a whole one of at least `least` that fits 63 bits.
bool isWhole(const json& value, std::int64_t least) {
  if (!value.is_number_integer()) return false;
  constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > most) return false;
  return value.get<std::int64_t>() >= least;
}

// What is wrong with a value for this parameter, worded to follow "The argument ...", or an
// empty text.
std::string faultOf(const Parameter& parameter, const json& value, const Drives& drives) {
  switch (parameter.kind) {
    case Parameter::Kind::Text: return value.is_string() ? "" : "must be a string";
    case Parameter::Kind::Flag: return value.is_boolean() ? "" : "must be true or false";
    case Parameter::Kind::Count: return isWhole(value, 1) ? "" : "must be a whole number above 0";
    case Parameter::Kind::Amount:
      return isWhole(value, 0) ? "" : "must be 0 or a whole number above";
    case Parameter::Kind::Drive: break;
  }
  if (!value.is_string()) return "must be a string";
  const auto& name = value.get_ref<const std::string&>();
  if (drives.find(name) != nullptr) return "";
  return "names no connected drive: " + inQuotes(name) + "; there are: " + drives.names();
}

}  // namespace

Parameter text(std::string_view name) {
  return {.name = name, .kind = Parameter::Kind::Text};
}

Parameter text(std::string_view name, std::string_view otherwise) {
  return {.name = name, .kind = Parameter::Kind::Text, .otherwise = json(otherwise)};
}

Parameter drive(std::string_view name) {
  return {.name = name, .kind = Parameter::Kind::Drive};
}

Parameter anyDrive(std::string_view name) {
  return {.name = name, .kind = Parameter::Kind::Drive, .otherwise = json("")};
}

Parameter count(std::string_view name, std::int64_t otherwise) {
  return {.name = name, .kind = Parameter::Kind::Count, .otherwise = json(otherwise)};
}

Parameter amount(std::string_view name, std::int64_t otherwise) {
  return {.name = name, .kind = Parameter::Kind::Amount, .otherwise = json(otherwise)};
}

Parameter flag(std::string_view name) {
  return {.name = name, .kind = Parameter::Kind::Flag, .otherwise = json(false)};
}

Outcome<Arguments> Arguments::check(const std::vector<Parameter>& parameters, const json& given,
                                    const Drives& drives) {
  Arguments checked;
  for (const Parameter& parameter : parameters) {
    const std::string name(parameter.name);
    const auto found = given.find(name);
    if (found == given.end()) {
      if (!parameter.otherwise) return refuse("The argument " + inQuotes(name) + " is missing.");
      checked.values_[name] = *parameter.otherwise;
      continue;
    }
    if (const std::string fault = faultOf(parameter, *found, drives); !fault.empty()) {
      return refuse("The argument " + inQuotes(name) + " " + fault + ".");
    }
    checked.values_[name] = *found;
  }
  return checked;
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
