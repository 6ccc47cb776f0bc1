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

/// waitForApp() with scripted dependencies, and a record of what it did. The wall clock shows 0.4
/// seconds more after each read of the endpoint file, so that a busy machine makes no difference.
class WaitForApp : public testing::Test {
 protected:
  std::optional<Endpoint> wait(Seconds timeout) {
    start_ = Clock::now();
    auto endpoint = bridge::waitForApp(
        timeout,
        {.load = [this] { return load(); },
         .probe = [this](const Endpoint& found) { return probe(found); },
         .launch = [this] { return launch(); },
         .wallClock = [this] { return std::chrono::system_clock::time_point(loadCount * 400ms); }});
    took = Clock::now() - start_;
    return endpoint;
  }

  /// What each read of the endpoint file finds. The last one stays.
  std::deque<std::optional<Endpoint>> files{std::nullopt};
  /// The port on which the application answers.
  std::int64_t answering = -1;
  bool launches = true;

  std::vector<std::int64_t> probed;
  std::vector<Seconds> reads;  ///< when the file was read after the launch
  int launchCount = 0;
  int loadCount = 0;
  Seconds took{};

 private:
  std::optional<Endpoint> load() {
    ++loadCount;
    if (launchCount > 0) reads.emplace_back(Clock::now() - launched_);
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

  Clock::time_point start_;
  Clock::time_point launched_;
};

Endpoint on(std::int64_t port) {
  return {.version = 1, .port = port, .token = "token"};
}

TEST_F(WaitForApp, ReturnsAnEndpointThatAnswersWithoutLaunching) {
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

TEST_F(WaitForApp, FailedLaunchEndsTheWait) {
  files = {on(1000)};
  launches = false;
  EXPECT_FALSE(wait(20s));
  EXPECT_EQ(launchCount, 1);
  EXPECT_EQ(loadCount, 1);
}

TEST_F(WaitForApp, WithoutTimeLaunchesAndReadsNothing) {
  files = {on(1000), on(2000)};
  answering = 2000;
  for (const Seconds timeout : {0s, -1s, -1000000s}) {
    launchCount = 0;
    reads.clear();
    files = {on(1000), on(2000)};
    EXPECT_FALSE(wait(timeout));
    EXPECT_EQ(launchCount, 1) << timeout.count();
    EXPECT_TRUE(reads.empty()) << timeout.count();
  }
}

TEST_F(WaitForApp, ProbesNothingWithoutAFile) {
  EXPECT_FALSE(wait(1s));
  EXPECT_EQ(launchCount, 1);
  EXPECT_TRUE(probed.empty());
}

TEST_F(WaitForApp, ReadsEvery400MillisecondsUntilTheTimeout) {
  EXPECT_FALSE(wait(1s));
  ASSERT_EQ(reads.size(), 3U);
  EXPECT_GE(reads[1] - reads[0], 0.39s);
  EXPECT_GE(reads[2] - reads[1], 0.39s);
  EXPECT_GE(took, 1.1s);
}

TEST_F(WaitForApp, DoesNotShortenThePauseAtTheTimeout) {
  EXPECT_FALSE(wait(0.2s));
  EXPECT_EQ(reads.size(), 1U);
  EXPECT_GE(took, 0.39s);
}

TEST_F(WaitForApp, ReturnsAnEndpointPublishedAfterTheLaunch) {
  files = {std::nullopt, std::nullopt, on(3000)};
  answering = 3000;
  const auto endpoint = wait(20s);
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->port, 3000);
  EXPECT_EQ(launchCount, 1);
  EXPECT_EQ(loadCount, 3);
  EXPECT_EQ(probed, std::vector<std::int64_t>{3000});
}

TEST_F(WaitForApp, ProbesAnOldEndpointUntilItIsReplaced) {
  files = {on(1000), on(1000), on(2000)};
  answering = 2000;
  const auto endpoint = wait(20s);
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->port, 2000);
  EXPECT_EQ(probed, (std::vector<std::int64_t>{1000, 1000, 2000}));
  EXPECT_EQ(launchCount, 1);
}

TEST_F(WaitForApp, AnswerToTheFirstReadNeedsNoPause) {
  answering = 2000;
  Seconds shortest = 1h;  // a busy machine can be slow, but not every time
  for (int attempt = 0; shortest >= 0.39s && attempt < 20; ++attempt) {
    files = {std::nullopt, on(2000)};
    EXPECT_TRUE(wait(20s));
    shortest = std::min(shortest, took);
  }
  EXPECT_LT(shortest, 0.39s);
}

}  // namespace
