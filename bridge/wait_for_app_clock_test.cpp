#include <gtest/gtest.h>

#include <chrono>
#include <optional>

#include "bridge/reachability.h"

namespace {

using namespace std::chrono_literals;
using bridge::Endpoint;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// waitForApp() with a timeout of one second, while the wall clock is set. The clock shows 0.4
/// seconds more after each read of the endpoint file, so that a busy machine makes no difference.
class WaitForAppClock : public testing::Test {
 protected:
  /// Sets the clock by `change` at that read of the file; read 0 is before the launch. Returns how
  /// long the wait took.
  Seconds waitAndSetClock(std::chrono::seconds change, int atRead) {
    reads = 0;
    const auto start = Clock::now();
    const auto found = bridge::waitForApp(1s, {.load = [&] { return load(change, atRead); },
                                               .probe = [](const Endpoint&) { return true; },
                                               .launch = [] { return true; },
                                               .wallClock = [&] { return wallClock(); }});
    EXPECT_EQ(found.has_value(), published);
    return Clock::now() - start;
  }

  int reads = 0;
  bool published = false;
  int publishAtRead = -1;

 private:
  std::optional<Endpoint> load(std::chrono::seconds change, int atRead) {
    if (reads == atRead) set_ += change;
    published = reads == publishAtRead;
    ++reads;
    if (!published) return std::nullopt;
    return Endpoint{.version = 1, .port = 1, .token = ""};
  }

  std::chrono::system_clock::time_point wallClock() const {
    return std::chrono::system_clock::time_point(reads * 400ms + set_);
  }

  std::chrono::seconds set_{0};
};

TEST_F(WaitForAppClock, SetForwardEndsTheWaitAfterThePause) {
  const Seconds took = waitAndSetClock(3600s, 1);
  EXPECT_EQ(reads, 2);
  EXPECT_GE(took, 0.39s) << "the pause is not shortened";
}

TEST_F(WaitForAppClock, SetBackProlongsTheWait) {
  const Seconds took = waitAndSetClock(-1s, 1);
  EXPECT_EQ(reads, 6);
  EXPECT_GE(took, 1.9s);
}

TEST_F(WaitForAppClock, SetBackDoesNotDelayFindingTheApplication) {
  publishAtRead = 3;
  waitAndSetClock(-3600s, 1);
  EXPECT_EQ(reads, 4);
}

TEST_F(WaitForAppClock, SetBeforeTheLaunchHasNoEffect) {
  for (const auto change : {0s, -3600s, 3600s}) {
    const Seconds took = waitAndSetClock(change, 0);
    EXPECT_EQ(reads, 4);
    EXPECT_GE(took, 1.1s);
  }
}

}  // namespace
