#include <gtest/gtest.h>

#include <chrono>
#include <optional>

#include "bridge/reachability.h"

namespace {

using namespace std::chrono_literals;
using bridge::Endpoint;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// waitForApp() for one second, looking in vain every 0.4 seconds, while somebody sets the wall
/// clock.
class WaitForAppClock : public testing::Test {
 protected:
  /// The clock is set by `change` when the file is looked for that many times after the launch.
  /// Returns how long the wait was.
  Seconds waitWhileClockIsSet(std::chrono::seconds change, int atLook) {
    looks = 0;
    const auto begun = Clock::now();
    const auto found = bridge::waitForApp(1s, {.load = [&] { return look(change, atLook); },
                                               .probe = [](const Endpoint&) { return true; },
                                               .launch = [] { return true; },
                                               .wallClock = [&] { return wallClock(); }});
    EXPECT_EQ(found.has_value(), published);
    return Clock::now() - begun;
  }

  int looks = 0;  ///< the first is before the launch
  bool published = false;
  int publishAtLook = -1;

 private:
  std::optional<Endpoint> look(std::chrono::seconds change, int atLook) {
    if (looks == atLook) set_ += change;
    published = looks == publishAtLook;
    ++looks;
    if (!published) return std::nullopt;
    return Endpoint{.version = 1, .port = 1, .token = ""};
  }

  std::chrono::system_clock::time_point wallClock() const {
    return std::chrono::system_clock::now() + set_;
  }

  std::chrono::seconds set_{0};
};

TEST_F(WaitForAppClock, SetForwardDuringTheWaitEndsItAfterThePass) {
  const Seconds took = waitWhileClockIsSet(3600s, 1);
  EXPECT_EQ(looks, 2);
  EXPECT_GE(took, 0.39s) << "the sleep of that pass is not shortened";
}

TEST_F(WaitForAppClock, SetBackDuringTheWaitPutsItsEndOffByThatMuch) {
  const Seconds took = waitWhileClockIsSet(-1s, 1);
  EXPECT_GE(took, 2s);
  EXPECT_GT(looks, 3);
}

TEST_F(WaitForAppClock, SetBackDoesNotKeepItFromFindingTheApplication) {
  publishAtLook = 3;
  const Seconds took = waitWhileClockIsSet(-3600s, 1);
  EXPECT_EQ(looks, 4);
  EXPECT_LT(took, 10s);
}

TEST_F(WaitForAppClock, SetBeforeTheLaunchChangesNothing) {
  for (const auto change : {-3600s, 3600s}) {
    const Seconds took = waitWhileClockIsSet(change, 0);
    EXPECT_GE(took, 1s);
    EXPECT_LT(took, 10s);
  }
}

}  // namespace
