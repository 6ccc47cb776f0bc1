#include "bridge/reachability.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "tests/support/scripts.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// reachable(), with an application on a loopback port.
class Reachable : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }
  bool reachable() { return bridge::reachable({.version = 7, .port = app.port(), .token = "t/"}); }

  ScriptedApp app;
};

TEST_F(Reachable, AsksForTheDriveStatus) {
  EXPECT_TRUE(reachable());
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_EQ(nlohmann::json::parse(app.record(0).received),
            (nlohmann::json{{"version", 7},
                            {"token", "t/"},
                            {"tool", "drive_status"},
                            {"arguments", nlohmann::json::object()}}));
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(Reachable, AnyBytesAreAnAnswer) {
  app.script({refuse("wrong token"), reply("no JSON"), reply("x"), reply("[]")});
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(reachable()) << i;
}

TEST_F(Reachable, EndWithoutBytesIsNone) {
  app.script({hangUp(), readAndHangUp(), [](AppConnection& connection) {
                connection.readRequest();
                connection.reset();
              }});
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(reachable()) << i;
}

TEST_F(Reachable, SilenceIsNoAnswerAfterThreeSeconds) {
  app.script({silence()});
  const auto begun = Clock::now();
  EXPECT_FALSE(reachable());
  EXPECT_GE(Clock::now() - begun, 3s);
  EXPECT_LT(Clock::now() - begun, 10s);
}

TEST(ReachableDeathTest, PortOutsideTheRangeEndsTheProcessWithoutAWord) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const std::int64_t port : {std::int64_t{-1}, std::int64_t{65536}, INT64_MIN, INT64_MAX}) {
    EXPECT_EXIT(bridge::reachable({.version = 1, .port = port, .token = ""}),
                testing::KilledBySignal(SIGABRT), testing::Eq(std::string()))
        << port;
  }
}

}  // namespace
