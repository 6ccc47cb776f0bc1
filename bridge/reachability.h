#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "bridge/endpoint.h"
#include "bridge/launch.h"

namespace bridge {

/// Whether the application answers on that endpoint, with anything at all, within 3 seconds.
/// It is asked for its drive status; the answer is thrown away. Blocks; main thread only.
///
/// A port outside 0 to 65535 ends the process at once.
bool reachable(const Endpoint& endpoint);

/// What waiting for the application is made of.
struct WaitingSteps {
  std::function<std::optional<Endpoint>()> load = Endpoint::load;
  std::function<bool(const Endpoint&)> probe = reachable;
  std::function<bool()> launch = launchApp;
  std::function<std::chrono::system_clock::time_point()> wallClock = std::chrono::system_clock::now;
};

/// An endpoint on which the application answers. If the published one does, that one, at
/// once. Otherwise the application is started, and the endpoint file read again every 0.4
/// seconds, each endpoint found being probed, until one answers or the wall clock is `timeout`
/// further on: then none, as also when it can't be started. A probe that has begun is never
/// shortened, so the end may come 3.4 seconds late. Blocks; main thread only.
std::optional<Endpoint> waitForApp(std::chrono::duration<double> timeout,
                                   const WaitingSteps& steps = {});

}  // namespace bridge
