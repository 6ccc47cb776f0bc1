#include "bridge/reachability.h"

#include <thread>
#include <utility>

#include "bridge/app_request.h"
#include "bridge/exchange.h"
#include "json/value.h"

namespace bridge {

using namespace std::chrono_literals;

bool reachable(const Endpoint& endpoint) {
  constexpr auto limit = 3s;
  auto request = appRequest(endpoint, "drive_status", json::emptyObject());
  return exchange(endpoint.port, std::move(request), limit).reply.has_value();
}

std::optional<Endpoint> waitForApp(std::chrono::duration<double> timeout,
                                   const WaitDependencies& dependencies) {
  constexpr auto pause = 400ms;

  if (auto endpoint = dependencies.load(); endpoint && dependencies.probe(*endpoint))
    return endpoint;
  if (!dependencies.launch()) return std::nullopt;
  const auto deadline = dependencies.wallClock() + timeout;
  while (dependencies.wallClock() < deadline) {
    if (auto endpoint = dependencies.load(); endpoint && dependencies.probe(*endpoint))
      return endpoint;
    std::this_thread::sleep_for(pause);
  }
  return std::nullopt;
}

}  // namespace bridge
