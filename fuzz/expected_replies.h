#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// The outcome of a tool call, and the tool result that the agent must get.
struct Outcome {
  bool isSuccess;
  std::string_view content;     ///< the result as JSON, or the error message
  std::string_view toolResult;  ///< as JSON
};

/// The outcome of a call. The calls, counted from 0, take turns, starting with outcome `first`,
/// which may be any number.
const Outcome& outcomeOf(std::size_t first, std::size_t call);

/// The expected replies and calls, in the form of reference::tree().
struct Expected {
  std::vector<nlohmann::json> replies;
  std::vector<nlohmann::json> calls;  ///< objects with "name" and "arguments"
  bool isSure = true;                 ///< false: the library stops at a number that is too big
};

/// What the protocol requires for these bytes on standard input. Independent of the server's code.
Expected expectedOf(std::string_view input, std::size_t first);
