#include "tests/reliability/idle/forgotten.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/reliability/answering_app.h"
#include "tests/reliability/idle/process_costs.h"
#include "tests/support/conversation.h"

namespace {

using Servers = std::vector<std::unique_ptr<ServerProcess>>;

constexpr std::size_t mostPrivateKibibytes = 150;

/// Two pipes and a file for standard error each.
void allowDescriptorsFor(std::size_t servers) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_cur < servers * 3 + 100) throw std::runtime_error("too few descriptors allowed");
}

void makeCall(ServerProcess& server) {
  server.send(toolCall(R"({"name":"drive_status"})") + "\n");
  const auto line = server.readLine();
  if (!line || line->find("isError") != std::string::npos) {
    throw std::runtime_error("a wrong answer: " + line.value_or("none"));
  }
}

Servers started(const std::string& program, const TemporaryHome& home, std::size_t count) {
  ServerSetup setup;
  setup.command = {program};
  Servers servers;
  for (std::size_t i = 0; i < count; ++i) {
    servers.push_back(std::make_unique<ServerProcess>(home, setup));
  }
  for (const auto& server : servers) makeCall(*server);
  return servers;
}

std::vector<ProcessCosts> costsOfAll(const Servers& servers) {
  std::vector<ProcessCosts> all;
  for (const auto& server : servers) all.push_back(costsOf(server->pid()));
  return all;
}

bool areSmall(const std::vector<ProcessCosts>& costs) {
  std::size_t most = 0;
  std::size_t sum = 0;
  for (const ProcessCosts& one : costs) {
    most = std::max(most, one.privateKibibytes);
    sum += one.privateKibibytes;
  }
  std::printf("private memory of a server: %zu KiB on average, %zu KiB at most\n",
              sum / costs.size(), most);
  if (most <= mostPrivateKibibytes) return true;
  std::printf("VIOLATION: more than %zu KiB\n", mostPrivateKibibytes);
  return false;
}

}  // namespace

bool forgottenServersCostNothing(const std::string& server, std::size_t count,
                                 std::chrono::seconds time) {
  using namespace std::chrono_literals;
  allowDescriptorsFor(count);
  const AnsweringApp app(
      [](const nlohmann::json&) { return R"({"ok":true,"result":{"drives":[]}})"; });
  const TemporaryHome home;
  EndpointFile(home).publish(app.port());
  const Servers servers = started(server, home, count);
  std::this_thread::sleep_for(1s);  // until the last one waits again

  const std::vector<ProcessCosts> before = costsOfAll(servers);
  std::this_thread::sleep_for(time);
  const std::vector<ProcessCosts> after = costsOfAll(servers);
  std::size_t wakeUps = 0;
  for (std::size_t i = 0; i < count; ++i) wakeUps += after[i].wakeUps - before[i].wakeUps;
  std::printf("%zu servers after one call each: %zu wake-ups in %lld s\n", count, wakeUps,
              static_cast<long long>(time.count()));
  if (wakeUps > 0) std::printf("VIOLATION: woke up without a reason\n");
  return areSmall(after) && wakeUps == 0;
}
