#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace standin {

/// A parameter of a tool, as agents know it.
struct Parameter {
  enum class Type { Text, Number, Flag };

  std::string name;
  Type type;
  nlohmann::json otherwise = nullptr;  ///< the default; null if the parameter is required
};

/// The arguments of one call, checked against the tool's parameters: each parameter has a value of
/// its type.
class Arguments {
 public:
  /// Takes the JSON object that the agent sent. A null counts as left out. Throws Refusal if an
  /// argument is unknown, missing or of another type.
  Arguments(std::string_view tool, const std::vector<Parameter>& parameters,
            const nlohmann::json& given);

  const std::string& text(const char* name) const;
  /// A whole number; 2.0 is one.
  std::uint64_t number(const char* name) const;
  bool flag(const char* name) const;

 private:
  nlohmann::json values_;
};

}  // namespace standin
