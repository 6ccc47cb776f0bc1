#include "benchmarks/driver/checks.h"

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include "benchmarks/contestants/catalogue_text.h"

namespace {

using nlohmann::json;

json parse(std::string_view text) {
  return json::parse(text, nullptr, false);
}

void require(const Contestant& who, bool right, std::string_view what, std::string_view written) {
  if (right) return;
  throw std::runtime_error(who.name + ": wrong " + std::string(what) + ": " +
                           std::string(written.substr(0, 400)));
}

json reply(int id, json result) {
  return {{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}};
}

json request(std::string_view token, std::string_view tool, json arguments) {
  return {{"version", 1}, {"token", token}, {"tool", tool}, {"arguments", std::move(arguments)}};
}

void checkRawAnswer(const Contestant& who, std::string_view answer, const ToolCall& call) {
  const std::string right =
      R"({"jsonrpc":"2.0","id":7,"result":{"content":[{"type":"text","text":")" + call.result +
      R"("}]}})";
  require(who, answer == right, "answer to tools/call", answer);
}

}  // namespace

void checkInitialize(const Contestant& who, std::string_view answer) {
  const json result{{"protocolVersion", "2024-11-05"},
                    {"capabilities", {{"tools", json::object()}}},
                    {"serverInfo", {{"name", "quillmark"}, {"version", "1.0.0"}}}};
  require(who, parse(answer) == reply(1, result), "answer to initialize", answer);
}

void checkToolsList(const Contestant& who, std::string_view answer) {
  require(who, parse(answer) == reply(2, parse(catalogueText)), "answer to tools/list", answer);
}

void checkToolAnswer(const Contestant& who, std::string_view answer, const ToolCall& call) {
  if (who.isFloor()) return checkRawAnswer(who, answer, call);
  json read = parse(answer);
  const json::json_pointer place("/result/content/0/text");
  require(who, read.contains(place) && read[place].is_string(), "answer to tools/call", answer);
  const auto text = read[place].get<std::string>();
  require(who, parse(text) == parse(call.result), "text in the answer to tools/call", text);
  read[place] = "";
  const json envelope = reply(7, {{"content", {{{"type", "text"}, {"text", ""}}}}});
  require(who, read == envelope, "answer to tools/call", answer);
}

void checkRequests(const Contestant& who, std::string_view probe, std::string_view sent,
                   const ToolCall& call, std::string_view token) {
  require(who, parse(probe) == request(token, "drive_status", json::object()), "probe", probe);
  require(who, parse(sent) == request(token, call.tool, parse(call.arguments)),
          "request to the application", sent);
}
