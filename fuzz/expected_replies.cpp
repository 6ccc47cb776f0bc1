#include "fuzz/expected_replies.h"

#include <utf8.h>

#include <array>
#include <iterator>

#include "catalogue/tool_definitions.h"
#include "tests/unit/reference.h"

namespace {

using nlohmann::json;

// "\xED\xA0\x80" is how the bridge encodes an unpaired surrogate.
constexpr std::array<Outcome, 8> outcomes{{
    {true, "{}", R"({"content":[{"type":"text","text":"{}"}]})"},
    {true, R"({"b":[1.0,[]],"a":"x\/y\n"})",
     R"({"content":[{"type":"text",)"
     R"("text":"{\n  \"a\" : \"x\\\/y\\n\",\n  \"b\" : [\n    1.0,\n    []\n  ]\n}"}]})"},
    {true, "null", R"({"content":[{"type":"text","text":"null"}]})"},
    {true, R"(["\ud800\u00e9",{"a":1,"a":-0e5}])",
     R"({"content":[{"type":"text",)"
     R"("text":"[\n  \"\\ud800\u00e9\",\n  {\n    \"a\" : -0e5\n  }\n]"}]})"},
    {false, "No response from Quillmark.",
     R"({"content":[{"type":"text","text":"No response from Quillmark."}],"isError":true})"},
    {false, "Quillmark could not be started. Open it once from Applications, then try again.",
     R"({"content":[{"type":"text","text":"Quillmark could not be started. )"
     R"(Open it once from Applications, then try again."}],"isError":true})"},
    {false, "", R"({"content":[{"type":"text","text":""}],"isError":true})"},
    {false, "\"a/b\"\n\t\xED\xA0\x80",
     R"({"content":[{"type":"text","text":"\"a/b\"\n\t\ud800"}],"isError":true})"},
}};

/// The lines without their ends, repaired with the library that the product uses.
std::vector<std::string> lines(std::string_view input) {
  std::vector<std::string> lines;
  while (!input.empty()) {
    const std::size_t lineFeed = input.find('\n');
    std::string_view line = input.substr(0, lineFeed);
    input.remove_prefix(lineFeed == std::string_view::npos ? input.size() : lineFeed + 1);
    if (lineFeed != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
    std::string repaired;
    utf8::replace_invalid(line.begin(), line.end(), std::back_inserter(repaired));
    lines.push_back(std::move(repaired));
  }
  return lines;
}

/// The string member as in reference::tree(): "s" and its characters.
std::string stringOrEmpty(const json& object, const char* name) {
  const auto member = object.find(name);
  if (member == object.end() || !member->is_string()) return "s";
  const auto& tagged = member->get_ref<const std::string&>();
  return tagged.starts_with('s') ? tagged : "s";
}

json objectOrEmpty(const json& object, const char* name) {
  const auto member = object.find(name);
  return member != object.end() && member->is_object() ? *member : json::object();
}

json reply(const json& request, const char* kind, json content) {
  return {{"jsonrpc", "s2.0"}, {"id", request.value("id", json())}, {kind, std::move(content)}};
}

const json& initializeResult() {
  static const json result =
      reference::tree(R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
                      R"("serverInfo":{"name":"quillmark","version":"1.0.0"}})");
  return result;
}

const json& toolsListResult() {
  static const json result{{"tools", reference::tree(toolDefinitions())}};
  return result;
}

void answer(const json& request, std::size_t first, Expected& expected) {
  const std::string method = stringOrEmpty(request, "method");
  if (method == "sinitialize") {
    expected.replies.push_back(reply(request, "result", initializeResult()));
  } else if (method == "stools/list") {
    expected.replies.push_back(reply(request, "result", toolsListResult()));
  } else if (method == "stools/call") {
    const Outcome& outcome = outcomeOf(first, expected.calls.size());
    const json params = objectOrEmpty(request, "params");
    expected.calls.push_back({{"name", stringOrEmpty(params, "name")},
                              {"arguments", objectOrEmpty(params, "arguments")}});
    expected.replies.push_back(reply(request, "result", reference::tree(outcome.toolResult)));
  } else if (request.contains("id")) {
    expected.replies.push_back(
        reply(request, "error",
              {{"code", "n-32601"}, {"message", "sUnknown method " + method.substr(1)}}));
  }
}

}  // namespace

const Outcome& outcomeOf(std::size_t first, std::size_t call) {
  return outcomes[(first + call) % outcomes.size()];
}

Expected expectedOf(std::string_view input, std::size_t first) {
  Expected expected;
  for (const std::string& line : lines(input)) {
    const reference::Validity validity = reference::validity(line);
    if (validity == reference::Validity::unknown) expected.isSure = false;
    if (validity != reference::Validity::valid) continue;
    const json message = reference::tree(line);
    if (message.is_object()) answer(message, first, expected);
  }
  return expected;
}
