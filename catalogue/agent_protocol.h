#pragma once

#include <span>
#include <string_view>

/// What the server offers to the agent. Everything in here is a constant of the program,
/// valid for ever and readable from any thread.
namespace AgentProtocol {

/// One input parameter of a tool.
struct Property {
  std::string_view type;         ///< JSON-Schema type name: "string", "integer" or "boolean"
  std::string_view description;  ///< for the agent; states the default where there is one
};

/// A parameter under its name, as a tool's table of parameters lists it.
struct NamedProperty {
  std::string_view name;
  Property property;
};

/// One tool as the agent sees it. The server executes none of them and checks no call against
/// them: every call goes to the desktop application as it is.
struct Tool {
  std::string_view name;
  std::string_view description;
  std::span<const NamedProperty> properties;   ///< each name once
  std::span<const std::string_view> required;  ///< names out of `properties`, order kept
};

}  // namespace AgentProtocol
