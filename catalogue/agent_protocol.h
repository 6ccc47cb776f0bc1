#pragma once

#include <string_view>
#include <vector>

/// What the server offers to the agent.
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
  std::vector<NamedProperty> properties;   ///< each name once
  std::vector<std::string_view> required;  ///< names from `properties`, in this order
};

/// The catalogue: eleven tools, in the order in which they are announced. Built on the first call,
/// never changed, valid until the process ends. Thread-safe.
const std::vector<Tool>& tools();

}  // namespace AgentProtocol
