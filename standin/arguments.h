#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "standin/drives.h"
#include "standin/outcome.h"

namespace standin {

/// One input parameter of a tool, as the agent was told of it.
struct Parameter {
  enum class Kind { Text, Drive, Count, Amount, Flag };

  std::string_view name;
  Kind kind;
  /// What counts when the agent leaves the parameter out; a required one has nothing here.
  std::optional<nlohmann::json> otherwise = std::nullopt;
};

/// Text of any length.
Parameter text(std::string_view name);
Parameter text(std::string_view name, std::string_view otherwise);
/// The name of a connected drive; anyDrive may be left out, which gives an empty name.
Parameter drive(std::string_view name);
Parameter anyDrive(std::string_view name);
/// A whole number of at least 1.
Parameter count(std::string_view name, std::int64_t otherwise);
/// A whole number of at least 0.
Parameter amount(std::string_view name, std::int64_t otherwise);
/// Yes or no; no when left out.
Parameter flag(std::string_view name);

/// The arguments of one call after they were found to suit its tool's parameters: every
/// parameter is there, with the right type. Asking for any other name throws.
class Arguments {
 public:
  /// Checks what the agent sent, a JSON object, and fills in what it left out. Members that
  /// are no parameters are ignored.
  static Outcome<Arguments> check(const std::vector<Parameter>& parameters,
                                  const nlohmann::json& given, const Drives& drives);

  const std::string& text(const char* name) const;
  std::uint64_t number(const char* name) const;
  bool flag(const char* name) const;

 private:
  nlohmann::json values_ = nlohmann::json::object();
};

}  // namespace standin
