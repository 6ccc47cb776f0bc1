#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// What the application makes of a tool call, and the tool result that the agent must get.
struct Outcome {
  bool isSuccess;
  std::string_view said;        ///< a success: its result as JSON; a failure: its message
  std::string_view toolResult;  ///< as JSON
};

/// One for each call, over and over. `first` may be any number.
const Outcome& outcomeOf(std::size_t first, std::size_t call);

/// What must come of some input, as reference::tree() gives it.
struct Expected {
  std::vector<nlohmann::json> replies;
  std::vector<nlohmann::json> calls;  ///< objects with "name" and "arguments"
  bool isSure = true;                 ///< false: there is a number that the judge finds too big
};

/// What the rules of the protocol make of these bytes on standard input, when the calls' outcomes
/// begin with `first`. Knows nothing of how the server does it.
Expected expectedOf(std::string_view input, std::size_t first);
