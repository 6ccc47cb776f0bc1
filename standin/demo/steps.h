#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace demo {

/// What kind of answer a step is due.
enum class Due { Nothing, Result, ToolResult, ToolFailure, MethodError };

/// One message of the session and what must come back.
struct Step {
  std::string heading;
  nlohmann::json request;
  Due due;
  /// Texts that all must appear in the answer as it is shown.
  std::vector<std::string> shows;
};

/// The whole session, in order: the introduction, the catalogue, every tool on the drives
/// "Studio" and "Archive" that scripts/demo prepares, and two requests that must be refused.
std::vector<Step> session();

}  // namespace demo
