#include "tests/reliability/idle/dead_app.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/reliability/recorded_open.h"
#include "tests/reliability/refusing_port.h"
#include "tests/support/conversation.h"
#include "tests/support/loopback_listener.h"

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// A probe of 3 seconds, 20 seconds after the launch, and a last probe with its pause.
constexpr Seconds longestWait(26.4);

/// The most that one call may take of the processor. A call that finds the port refusing tries to
/// connect about 1,200 times, every 20 ms. That costs some microseconds each on an idle machine,
/// and several times as much on a busy one. A loop that does not pause would take 20 seconds.
constexpr Seconds mostProcessorTime(1);

/// The result of one server's call.
struct Outcome {
  Seconds took{};
  Seconds processorTime{};
  std::size_t launches = 0;
  bool right = false;
};

Outcome callOfOneServer(const std::string& program, const RecordedOpen& open, std::uint16_t port) {
  const TemporaryHome home;
  EndpointFile(home).publish(port);
  ServerSetup setup;
  setup.command = {program};
  setup.overUsrBin = open.folder();
  ServerProcess server(home, setup);
  Outcome outcome;
  const auto start = Clock::now();
  server.send(toolCall(R"({"name":"drive_status"})") + "\n");
  const auto line = server.readLine(std::chrono::seconds(120));
  outcome.took = Clock::now() - start;
  outcome.right =
      line && nlohmann::json::parse(*line).at("result") == errorResult(couldNotBeStarted);
  server.closeInput();
  outcome.processorTime = server.waitForExit().processorTime;
  outcome.launches = RecordedOpen::launches(home);
  return outcome;
}

std::vector<Outcome> callsOfServers(const std::string& program, std::size_t count,
                                    std::uint16_t port) {
  const RecordedOpen open;
  std::vector<Outcome> outcomes(count);
  std::vector<std::jthread> threads;
  threads.reserve(count);
  for (Outcome& outcome : outcomes) {
    threads.emplace_back([&] { outcome = callOfOneServer(program, open, port); });
  }
  threads.clear();
  return outcomes;
}

bool judge(std::string_view what, const std::vector<Outcome>& outcomes) {
  Outcome most;
  Seconds processorTime{};
  bool launchedOnce = true;
  bool right = true;
  for (const Outcome& one : outcomes) {
    most.took = std::max(most.took, one.took);
    most.processorTime = std::max(most.processorTime, one.processorTime);
    processorTime += one.processorTime;
    launchedOnce = launchedOnce && one.launches == 1;
    right = right && one.right;
  }
  const auto count = static_cast<double>(outcomes.size());
  std::printf(
      "%zu servers and %.*s: answered after %.1f s at most; processor time of a call "
      "%.0f ms on average, %.0f ms at most\n",
      outcomes.size(), static_cast<int>(what.size()), what.data(), most.took.count(),
      processorTime.count() / count * 1000, most.processorTime.count() * 1000);
  if (!right) std::printf("VIOLATION: a wrong answer\n");
  if (!launchedOnce) std::printf("VIOLATION: not one launch for each call\n");
  if (most.took > longestWait) std::printf("VIOLATION: later than %.1f s\n", longestWait.count());
  if (most.processorTime > mostProcessorTime) std::printf("VIOLATION: too much processor time\n");
  return right && launchedOnce && most.took <= longestWait &&
         most.processorTime <= mostProcessorTime;
}

}  // namespace

bool deadApplicationCostsLittle(const std::string& server, std::size_t count) {
  const LoopbackListener silent(4096);  // the system accepts, no program answers
  const RefusingPort refusing;
  std::vector<Outcome> silentOutcomes;
  std::vector<Outcome> refusedOutcomes;
  {
    const std::jthread thread(
        [&] { silentOutcomes = callsOfServers(server, count, silent.port()); });
    refusedOutcomes = callsOfServers(server, count, refusing.port());
  }
  const bool first = judge("an application that never answers", silentOutcomes);
  const bool second = judge("a port that refuses", refusedOutcomes);
  return first && second;
}
