#include "benchmarks/driver/call_meter.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

double nanosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

json parse(std::string_view text) {
  return json::parse(text, nullptr, false);
}

void require(bool isRight, const std::string& what, std::string_view written) {
  if (!isRight) throw std::runtime_error("wrong " + what + ": " + std::string(written, 0, 400));
}

void checkRequest(std::string_view written, const json& call) {
  const json right{{"version", 1},
                   {"token", appToken},
                   {"tool", call.at("name")},
                   {"arguments", call.at("arguments")}};
  require(parse(written) == right, "request to the application", written);
}

void checkAnswer(const Call& call, std::string_view answer) {
  const json read = parse(answer);
  json result = parse(call.result);
  if (!call.reply.empty()) {
    const std::string text = read.at("/result/content/0/text"_json_pointer);
    require(parse(text) == result, "text in the answer", text);
    result = {{"content", {{{"type", "text"}, {"text", text}}}}};
  }
  const json right{{"jsonrpc", "2.0"}, {"id", 7}, {"result", result}};
  require(read == right, "answer", answer);
}

void check(const Call& call, std::string_view answer, const std::vector<std::string_view>& requests,
           bool isFloor) {
  if (call.reply.empty()) return checkAnswer(call, answer);
  require(requests.size() == 2, "number of requests", "");
  checkRequest(requests[0], {{"name", "drive_status"}, {"arguments", json::object()}});
  checkRequest(requests[1], parse(call.line).at("params"));
  if (!isFloor) return checkAnswer(call, answer);
  constexpr std::string_view head =
      R"({"jsonrpc":"2.0","id":7,"result":{"content":[{"type":"text","text":")";
  require(answer == std::string(head) + call.result + R"("}]}})", "answer", answer);
}

}  // namespace

Cost CallMeter::run(const Competitor& competitor, std::size_t count) {
  static const Call first = initialize();
  const bool isFloor = competitor.name == "floor";
  Cost cost;
  const Clock::time_point start = Clock::now();
  Conversation conversation(competitor.command);
  const std::string_view answer = conversation.ask(first.line);
  cost.start = nanosecondsSince(start);
  checkAnswer(first, answer);
  cost.idleMemory = conversation.memory("VmRSS");
  ask(conversation, isFloor, false);
  std::vector<double> times(count);
  for (double& time : times) time = ask(conversation, isFloor, true);
  std::ranges::sort(times);
  if (count > 0) cost.call = times[count / 2];
  cost.peakMemory = conversation.memory("VmHWM");
  return cost;
}

double CallMeter::ask(Conversation& conversation, bool isFloor, bool lengthsAsBefore) {
  application_.expect(call_.reply, lengthsAsBefore);
  const Clock::time_point start = Clock::now();
  const std::string_view answer = conversation.ask(call_.line);
  const double elapsed = nanosecondsSince(start);

  const std::hash<std::string_view> hash;
  const std::vector<std::string_view> requests = application_.requests();
  std::vector<std::size_t> written{hash(answer)};
  for (const std::string_view request : requests) written.push_back(hash(request));
  if (right_.contains(written)) return elapsed;
  check(call_, answer, requests, isFloor);
  right_.insert(std::move(written));
  return elapsed;
}
