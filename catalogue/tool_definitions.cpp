#include "catalogue/tool_definitions.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <ranges>

#include "catalogue/tools.h"

namespace {

using AgentProtocol::NamedProperty;
using AgentProtocol::Tool;

/// Takes text and only counts it.
class Counter {
 public:
  constexpr void put(char /*byte*/) { ++size_; }
  [[nodiscard]] constexpr std::size_t size() const { return size_; }

 private:
  std::size_t size_ = 0;
};

/// Takes text into an array of just its size.
template <std::size_t size>
class Collector {
 public:
  constexpr void put(char byte) { text_.at(used_++) = byte; }
  [[nodiscard]] constexpr std::array<char, size> text() const { return text_; }

 private:
  std::array<char, size> text_{};
  std::size_t used_ = 0;
};

constexpr void append(auto& out, std::string_view text) {
  for (const char c : text) out.put(c);
}

constexpr void appendString(auto& out, std::string_view characters) {
  out.put('"');
  for (const char c : characters) {
    if (c == '"' || c == '\\' || c == '/') out.put('\\');
    out.put(c);
  }
  out.put('"');
}

/// Calls `one` for each of the items, with a comma between them.
constexpr void appendEach(auto& out, const auto& items, auto one) {
  bool first = true;
  for (const auto& item : items) {
    if (!first) out.put(',');
    first = false;
    one(item);
  }
}

constexpr void appendProperty(auto& out, const NamedProperty& named) {
  appendString(out, named.name);
  append(out, R"(:{"type":)");
  appendString(out, named.property.type);
  append(out, R"(,"description":)");
  appendString(out, named.property.description);
  out.put('}');
}

constexpr void appendInputSchema(auto& out, const Tool& tool) {
  append(out, R"({"type":"object","properties":{)");
  appendEach(out, tool.properties, [&](const auto& named) { appendProperty(out, named); });
  append(out, R"(},"required":[)");
  appendEach(out, tool.required, [&](std::string_view name) { appendString(out, name); });
  append(out, "]}");
}

constexpr void appendTool(auto& out, const Tool& tool) {
  append(out, R"({"name":)");
  appendString(out, tool.name);
  append(out, R"(,"description":)");
  appendString(out, tool.description);
  append(out, R"(,"inputSchema":)");
  appendInputSchema(out, tool);
  out.put('}');
}

constexpr void appendCatalogue(auto& out) {
  out.put('[');
  appendEach(out, AgentProtocol::tools, [&](const Tool& tool) { appendTool(out, tool); });
  out.put(']');
}

/// No parameter twice in a tool, and none required that the tool does not have.
constexpr bool isConsistent(const Tool& tool) {
  const auto named = [&](std::string_view name) {
    return std::ranges::count(tool.properties, name, &NamedProperty::name);
  };
  return std::ranges::all_of(tool.properties, [&](const auto& p) { return named(p.name) == 1; }) &&
         std::ranges::all_of(tool.required, [&](auto name) { return named(name) == 1; });
}
static_assert(std::ranges::all_of(AgentProtocol::tools, isConsistent));

constexpr std::size_t catalogueSize = [] {
  Counter counter;
  appendCatalogue(counter);
  return counter.size();
}();

constexpr std::array<char, catalogueSize> catalogueText = [] {
  Collector<catalogueSize> collector;
  appendCatalogue(collector);
  return collector.text();
}();

}  // namespace

std::string_view toolDefinitions() {
  return {catalogueText.data(), catalogueText.size()};
}
