#pragma once

#include <initializer_list>
#include <string_view>

/// What the server offers to the agent: constants, readable from any thread.
namespace AgentProtocol {

/// An input parameter of a tool.
struct Property {
  std::string_view type;         ///< JSON-Schema type name: "string", "integer" or "boolean"
  std::string_view description;  ///< for the agent; states the default if there is one
};

struct NamedProperty {
  std::string_view name;
  Property property;
};

/// A tool as the agent sees it. The server executes none of them and checks no call against them:
/// every call is forwarded to the desktop application unchanged.
struct Tool {
  std::string_view name;
  std::string_view description;
  std::initializer_list<NamedProperty> properties;   ///< each name once
  std::initializer_list<std::string_view> required;  ///< names from `properties`, in this order
};

}  // namespace AgentProtocol
