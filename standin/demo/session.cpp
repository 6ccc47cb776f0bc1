#include "standin/demo/session.h"

#include <stdexcept>

namespace demo {
namespace {

Params toolCall(std::string_view tool, const Params& arguments) {
  return {{"name", tool}, {"arguments", arguments}};
}

}  // namespace

void expect(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error("not as expected: " + what);
}

std::string textOf(const json& result, bool shouldBeError) {
  expect(result.value("isError", false) == shouldBeError, result.dump());
  return result.at("content").at(0).at("text");
}

json Session::request(std::string_view method, const Params& params) {
  const std::string message = next(method, params);
  transcript_.message("host -> server", message);
  return resultOf(message);
}

void Session::notify(std::string_view method) {
  const std::string message = Params({{"jsonrpc", "2.0"}, {"method", method}}).dump();
  transcript_.message("host -> server", message);
  server_.send(message);
}

json Session::call(std::string_view tool, const Params& arguments) {
  transcript_.call(tool, arguments.dump());
  json result = json::parse(textOf(resultOf(next("tools/call", toolCall(tool, arguments))), false));
  transcript_.result(result);
  return result;
}

std::string Session::refusedCall(std::string_view tool, const Params& arguments) {
  transcript_.call(tool, arguments.dump());
  std::string sentence = textOf(resultOf(next("tools/call", toolCall(tool, arguments))), true);
  transcript_.refusal(sentence);
  return sentence;
}

void Session::finish() {
  const int status = server_.finish();
  expect(status == 0, "the server's exit status is " + std::to_string(status));
}

std::string Session::next(std::string_view method, const Params& params) {
  Params message{{"jsonrpc", "2.0"}, {"id", ++id_}, {"method", method}};
  if (!params.empty()) message["params"] = params;
  return message.dump();
}

json Session::resultOf(const std::string& message) {
  server_.send(message);
  reply_ = server_.receive();
  const json object = json::parse(reply_);
  expect(object.at("id") == id_ && object.contains("result"), reply_);
  return object.at("result");
}

}  // namespace demo
