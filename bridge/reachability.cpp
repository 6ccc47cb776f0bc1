#include "bridge/reachability.h"

#include <thread>

#include "bridge/app_request.h"
#include "bridge/exchange.h"

namespace bridge {

using namespace std::chrono_literals;

bool reachable(const Endpoint& endpoint) {
  constexpr auto limit = 3s;
  auto request = appRequest(endpoint, "drive_status", json::emptyObject());
  return exchange(endpoint.port, std::move(request), limit).reply.has_value();
}

std::optional<Endpoint> waitForApp(std::chrono::duration<double> timeout,
                                   const WaitingSteps& steps) {
  constexpr auto pause = 400ms;

  if (auto endpoint = steps.load(); endpoint && steps.probe(*endpoint)) return endpoint;
  if (!steps.launch()) return std::nullopt;
  const auto deadline = steps.wallClock() + timeout;
  while (steps.wallClock() < deadline) {
    if (auto endpoint = steps.load(); endpoint && steps.probe(*endpoint)) return endpoint;
    std::this_thread::sleep_for(pause);
  }
  return std::nullopt;
}

}  // namespace bridge
