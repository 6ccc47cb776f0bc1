#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "bridge/reachability.h"

namespace {

using namespace std::chrono_literals;
using bridge::Endpoint;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// waitForApp() with a scripted world around it, and a record of what it did there.
class WaitForApp : public testing::Test {
 protected:
  std::optional<Endpoint> wait(Seconds timeout) {
    begun_ = Clock::now();
    auto endpoint = bridge::waitForApp(
        timeout, {.load = [this] { return load(); },
                  .probe = [this](const Endpoint& found) { return probe(found); },
                  .launch = [this] { return launch(); }});
    took = Clock::now() - begun_;
    return endpoint;
  }

  /// What each look at the endpoint file finds; the last is found again and again.
  std::deque<std::optional<Endpoint>> files{std::nullopt};
  /// The port that the application answers on.
  std::int64_t answering = -1;
  bool launches = true;

  std::vector<std::int64_t> probed;
  std::vector<Seconds> looks;  ///< when the file was looked at after the launch
  int launchCount = 0;
  int loadCount = 0;
  Seconds took{};

 private:
  std::optional<Endpoint> load() {
    ++loadCount;
    if (launchCount > 0) looks.emplace_back(Clock::now() - launched_);
    auto file = files.front();
    if (files.size() > 1) files.pop_front();
    return file;
  }
  bool probe(const Endpoint& endpoint) {
    probed.push_back(endpoint.port);
    return endpoint.port == answering;
  }
  bool launch() {
    ++launchCount;
    launched_ = Clock::now();
    return launches;
  }

  Clock::time_point begun_;
  Clock::time_point launched_;
};

Endpoint on(std::int64_t port) {
  return {.version = 1, .port = port, .token = "token"};
}

TEST_F(WaitForApp, EndpointThatAnswersIsReturnedWithoutALaunch) {
  files = {on(1000)};
  answering = 1000;
  const auto endpoint = wait(20s);
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->port, 1000);
  EXPECT_EQ(endpoint->token, "token");
  EXPECT_EQ(probed, std::vector<std::int64_t>{1000});
  EXPECT_EQ(launchCount, 0);
  EXPECT_EQ(loadCount, 1);
}

TEST_F(WaitForApp, FailedLaunchEndsTheWaitAtOnce) {
  files = {on(1000)};
  launches = false;
  EXPECT_FALSE(wait(20s));
  EXPECT_EQ(launchCount, 1);
  EXPECT_EQ(loadCount, 1);
  EXPECT_LT(took, 10s);
}

TEST_F(WaitForApp, WithoutTimeLaunchesOnceAndLooksNoFurther) {
  files = {on(1000), on(2000)};
  answering = 2000;
  for (const Seconds timeout : {0s, -1s, -1000000s}) {
    launchCount = 0;
    looks.clear();
    files = {on(1000), on(2000)};
    EXPECT_FALSE(wait(timeout));
    EXPECT_EQ(launchCount, 1) << timeout.count();
    EXPECT_TRUE(looks.empty()) << timeout.count();
  }
}

TEST_F(WaitForApp, MissingFileIsLookedForAndNothingProbed) {
  EXPECT_FALSE(wait(1s));
  EXPECT_EQ(launchCount, 1);
  EXPECT_TRUE(probed.empty());
}

TEST_F(WaitForApp, LooksEveryFourTenthsOfASecondUntilTheTimeIsUp) {
  EXPECT_FALSE(wait(1s));
  EXPECT_GE(looks.size(), 2U);  // on a machine too busy to keep the pace
  EXPECT_LE(looks.size(), 3U);
  for (std::size_t i = 1; i < looks.size(); ++i) EXPECT_GE(looks[i] - looks[i - 1], 0.39s) << i;
  EXPECT_GE(took, 1s);
}

TEST_F(WaitForApp, SleepIsNotShortenedByTheDeadline) {
  EXPECT_FALSE(wait(0.2s));
  EXPECT_EQ(looks.size(), 1U);
  EXPECT_GE(took, 0.39s);
}

TEST_F(WaitForApp, EndpointPublishedAfterTheLaunchIsReturned) {
  files = {std::nullopt, std::nullopt, on(3000)};
  answering = 3000;
  const auto endpoint = wait(20s);
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->port, 3000);
  EXPECT_EQ(launchCount, 1);
  EXPECT_EQ(loadCount, 3);
  EXPECT_EQ(probed, std::vector<std::int64_t>{3000});
}

TEST_F(WaitForApp, StaleEndpointIsReplacedByTheFreshOne) {
  files = {on(1000), on(1000), on(2000)};
  answering = 2000;
  const auto endpoint = wait(20s);
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->port, 2000);
  EXPECT_EQ(probed, (std::vector<std::int64_t>{1000, 1000, 2000}));
  EXPECT_EQ(launchCount, 1);
}

TEST_F(WaitForApp, AnswerInTheFirstPassCostsNoSleep) {
  answering = 2000;
  Seconds shortest = 1h;  // a busy machine may take its time, but not always
  for (int i = 0; i < 5; ++i) {
    files = {std::nullopt, on(2000)};
    EXPECT_TRUE(wait(20s));
    shortest = std::min(shortest, took);
  }
  EXPECT_LT(shortest, 0.39s);
}

}  // namespace
