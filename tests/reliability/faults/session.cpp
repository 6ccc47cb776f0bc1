#include "tests/reliability/faults/session.h"

#include <cstddef>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

/// Collects the requests of one session and gives them their ids.
class Requests {
 public:
  /// A request that needs no application.
  Requests& ask(std::string_view method, const json& result) {
    asked_.push_back({.line = request(method, id()) + "\n", .isCall = false, .result = result});
    return *this;
  }

  Requests& initialize() {
    return ask("initialize", {{"protocolVersion", "2024-11-05"},
                              {"capabilities", {{"tools", json::object()}}},
                              {"serverInfo", {{"name", "quillmark"}, {"version", "1.0.0"}}}});
  }

  /// A tool call that the application answers as `wish` says; see replyTo().
  Requests& call(std::string_view wish, const json& result, std::size_t filling = 0) {
    const json params = {
        {"name", "read_file"},
        {"arguments",
         {{"number", asked_.size() + 1}, {"wish", wish}, {"filling", std::string(filling, 'x')}}}};
    asked_.push_back(
        {.line = toolCall(params.dump(), id()) + "\n", .isCall = true, .result = result});
    return *this;
  }

  Requests& smallCall() { return call("number", textResult(json{asked_.size() + 1}.dump(2))); }

  std::vector<Asked> thenTheUsual() {
    smallCall();
    ask("tools/list", nullptr);
    return asked_;
  }

 private:
  [[nodiscard]] std::string id() const { return std::to_string(asked_.size() + 1); }

  std::vector<Asked> asked_;
};

constexpr std::size_t bigArgument = 2'000'000;

const std::string& bigText() {
  static const std::string text(4'000'000, 'q');
  return text;
}

constexpr std::string_view badLines =
    "not JSON\n"
    "\n"
    "1\n"
    "[{\"jsonrpc\":\"2.0\",\"id\":9,\"method\":\"ping\"}]\n"
    "{\"jsonrpc\":\"2.0\",\"id\":9,\"method\":\"ping\"\n"
    "{\"id\":9,\"method\":\"\xFF\"]}\n"
    "{\"jsonrpc\":\"2.0\",\"method\":\"notifications/initialized\"}\n";

std::vector<Session> allSessions() {
  const json unknown = {{"code", -32601}, {"message", "Unknown method ping"}};
  return {
      {.name = "handshake and bad lines",
       .asked = Requests().initialize().ask("ping", unknown).thenTheUsual(),
       .unanswered = std::string(badLines)},
      {.name = "a small call", .asked = Requests().initialize().smallCall().thenTheUsual()},
      {.name = "a 4 MB reply",
       .asked = Requests().call("big", textResult(json{bigText()}.dump(2))).thenTheUsual(),
       .pipesDoNotBlock = true},
      {.name = "a 2 MB argument",
       .asked = Requests()
                    .call("length", textResult(json{bigArgument}.dump(2)), bigArgument)
                    .thenTheUsual()},
      {.name = "an application that has to be started",
       .asked = Requests().smallCall().thenTheUsual(),
       .appHasToBeStarted = true},
      {.name = "an application that refuses",
       .asked = Requests()
                    .call("refuse", errorResult("Not now."))
                    .call("shrug", errorResult(refusedRequest))
                    .thenTheUsual()},
      {.name = "several calls in a row",
       .asked = Requests().smallCall().smallCall().smallCall().smallCall().thenTheUsual()},
      {.name = "an abandoned exchange",
       .asked = Requests().smallCall().thenTheUsual(),
       .firstProbeIsAbandoned = true},
  };
}

}  // namespace

std::string Session::input() const {
  std::string text = unanswered;
  for (const Asked& request : asked) text += request.line;
  return text;
}

const std::vector<Session>& sessions() {
  static const std::vector<Session> all = allSessions();
  return all;
}

std::string replyTo(const json& request) {
  const json& arguments = request.at("arguments");
  const auto wish = arguments.at("wish").get<std::string>();
  if (wish == "refuse") return R"({"ok":false,"error":"Not now."})";
  if (wish == "shrug") return R"({"ok":false})";
  json result = {arguments.at("number")};
  if (wish == "big") result = {bigText()};
  if (wish == "length") result = {arguments.at("filling").get<std::string>().size()};
  return json{{"ok", true}, {"result", result}}.dump();
}
