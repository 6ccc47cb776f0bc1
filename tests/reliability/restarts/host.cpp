#include "tests/reliability/restarts/host.h"

#include <stdexcept>
#include <thread>

#include "tests/support/conversation.h"

using namespace std::chrono_literals;
using nlohmann::json;

void Host::call() {
  constexpr auto longAfterEveryLimit = 120s;
  std::this_thread::sleep_for(std::chrono::microseconds(random_() % 10'000));
  Call call{.number = calls_.size() + 1};
  const json params = {{"name", "move_file"}, {"arguments", {{"number", call.number}}}};
  call.time.begin = Clock::now();
  server_.send(toolCall(params.dump(), std::to_string(call.number)) + "\n");
  const auto line = server_.readLine(longAfterEveryLimit);
  call.time.end = Clock::now();
  if (!line) throw std::runtime_error("no answer to call " + std::to_string(call.number));
  const json reply = json::parse(*line);
  if (reply.at("id") != call.number) throw std::runtime_error("another id: " + *line);
  const json& result = reply.at("result");
  const auto text = result.at("content").at(0).at("text").get<std::string>();
  if (result.contains("isError")) {
    call.failure = text;
  } else {
    const json value = json::parse(text);
    if (value.at(0) != call.number) throw std::runtime_error("another call's answer: " + *line);
    call.by = value.at(1).get<std::string>();
  }
  calls_.push_back(std::move(call));
}
