#include "catalogue/tool_definitions.h"

#include <string_view>

#include "catalogue/agent_protocol.h"
#include "catalogue/tools.h"
#include "common/bytes.h"
#include "json/writer.h"

namespace {

using AgentProtocol::NamedProperty;
using AgentProtocol::Tool;
using common::Bytes;

/// Appends each of the items with `appendOne`, separated by commas.
void appendEach(Bytes& out, const auto& items, auto appendOne) {
  bool isFirst = true;
  for (const auto& item : items) {
    if (!isFirst) out.append(',');
    isFirst = false;
    appendOne(out, item);
  }
}

void appendProperty(Bytes& out, const NamedProperty& named) {
  json::appendQuoted(out, named.name);
  out.append(R"(:{"type":)");
  json::appendQuoted(out, named.property.type);
  out.append(R"(,"description":)");
  json::appendQuoted(out, named.property.description);
  out.append('}');
}

void appendTool(Bytes& out, const Tool& tool) {
  out.append(R"({"name":)");
  json::appendQuoted(out, tool.name);
  out.append(R"(,"description":)");
  json::appendQuoted(out, tool.description);
  out.append(R"(,"inputSchema":{"type":"object","properties":{)");
  appendEach(out, tool.properties, appendProperty);
  out.append(R"(},"required":[)");
  appendEach(out, tool.required, json::appendQuoted);
  out.append("]}}");
}

Bytes writeDefinitions() {
  Bytes out;
  out.append('[');
  appendEach(out, AgentProtocol::tools, appendTool);
  out.append(']');
  return out;
}

}  // namespace

std::string_view toolDefinitions() {
  static const Bytes definitions = writeDefinitions();
  return definitions.view();
}
