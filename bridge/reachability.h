#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "bridge/endpoint.h"
#include "bridge/launch.h"

namespace bridge {

/// Sends the application a "drive_status" request and returns whether anything at all comes back
/// within 3 seconds. Blocks the calling thread.
///
/// A port outside 0 to 65535 ends the process at once.
bool reachable(const Endpoint& endpoint);

/// What waitForApp() depends on, replaceable in tests.
struct WaitDependencies {
  std::function<std::optional<Endpoint>()> load = Endpoint::load;
  std::function<bool(const Endpoint&)> probe = reachable;
  std::function<bool()> launch = launchApp;
  std::function<std::chrono::system_clock::time_point()> wallClock = std::chrono::system_clock::now;
};

/// Returns an endpoint on which the application answers.
///
/// If the published endpoint answers, returns it at once. Otherwise launches the application, then
/// reads the endpoint file every 0.4 seconds and probes each endpoint found, until one answers.
/// None if the application cannot be launched or the wall clock has advanced by `timeout`. No probe
/// and no pause is cut short, so the call can take 6.4 seconds more. Blocks the calling thread.
std::optional<Endpoint> waitForApp(std::chrono::duration<double> timeout,
                                   const WaitDependencies& dependencies = {});

}  // namespace bridge
