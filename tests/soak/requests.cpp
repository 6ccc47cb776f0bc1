#include "tests/soak/requests.h"

#include <array>
#include <string_view>

#include "tests/soak/misbehaving_app.h"
#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// Other tests check the result of "tools/list".
constexpr std::string_view anyResult = "any";

std::string idOf(std::size_t number) {
  return number % 3 == 0 ? "\"id-" + std::to_string(number) + "\"" : std::to_string(number);
}

std::string unansweredBefore(std::size_t number) {
  static const std::array<std::string, 9> lines{
      "",
      "not JSON",
      R"([{"jsonrpc":"2.0","id":1,"method":"ping"}])",
      R"({"jsonrpc":"2.0","id":1,"method":"ping")",
      "1",
      "   ",
      R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
      R"({"method":"ping","params":{"a":[1,2,3]}})",
      "{\"id\":1,\"method\":\"\xFF\"]}"};
  if (number % 10'000 == 5'000) return std::string(100'000, '[') + "\n";
  if (number % 10'000 == 7'000) return nestedArrays(100'000) + "\n";
  return number % 5 == 0 ? lines[number / 5 % lines.size()] + "\n" : "";
}

SoakRequest unknownMethod(std::size_t number, const std::string& method, std::size_t filling) {
  return {.line = R"({"jsonrpc":"2.0","id":)" + idOf(number) + R"(,"method":")" + method +
                  R"(","params":{"filling":")" + std::string(filling, 'x') + "\"}}\n",
          .error = json{{"code", -32601}, {"message", "Unknown method " + method}}.dump()};
}

SoakRequest call(std::size_t number, std::string_view name) {
  const Behaviour& expected = behaviour(name);
  const json params = {{"name", "tool"}, {"arguments", {{"do", name}, {"number", number}}}};
  return {
      .line = toolCall(params.dump(), idOf(number)) + "\n",
      .result = (expected.isError ? errorResult(expected.text) : textResult(expected.text)).dump(),
      .isCall = true};
}

std::string_view rareCall(std::size_t number) {
  static constexpr std::array<std::string_view, 3> names{"big", "bigTruncated", "tooLong"};
  return names[number / 2'500 % names.size()];
}

std::string_view frequentCall(std::size_t number) {
  static constexpr std::array<std::string_view, 10> names{"small", "refuse", "close", "small",
                                                          "reset", "shrug",  "deep",  "truncated",
                                                          "small", "garbage"};
  return number % 100 == 3 ? "listing" : names[number / 10 % names.size()];
}

SoakRequest makeRequest(std::size_t number) {
  constexpr std::size_t longLine = 64 << 20;
  if (number % 50'000 == 10'000) return unknownMethod(number, "long", longLine);
  if (number % 2'500 == 1'250) return call(number, rareCall(number));
  switch (number % 10) {
    case 0:
    case 3:
    case 5:
    case 8: return call(number, frequentCall(number));
    case 1:
      return {.line = request("tools/list", idOf(number)) + "\n", .result = std::string(anyResult)};
    case 2:
      return {.line = request("initialize", idOf(number)) + "\n",
              .result = R"({"capabilities":{"tools":{}},"protocolVersion":"2024-11-05",)"
                        R"("serverInfo":{"name":"quillmark","version":"1.0.0"}})"};
    case 4:
      return unknownMethod(number, "a method with a long name of its own", number * 7 % 9'000);
    default: return unknownMethod(number, "ping", number % 50);
  }
}

}  // namespace

SoakRequest soakRequest(std::size_t number) {
  SoakRequest made = makeRequest(number);
  made.unanswered = unansweredBefore(number);
  made.id = idOf(number);
  return made;
}
