#include "bridge/reachability.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>

#include "tests/support/scripts.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// reachable() with a scripted application.
class Reachable : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }
  bool reachable() { return bridge::reachable({.version = 7, .port = app.port(), .token = "t/"}); }

  ScriptedApp app;
};

TEST_F(Reachable, SendsADriveStatusRequest) {
  EXPECT_TRUE(reachable());
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_EQ(app.record(0).received,
            R"({"version":7,"token":"t\/","tool":"drive_status","arguments":{}})");
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(Reachable, AnyBytesAreAnAnswer) {
  app.script({refuse("wrong token"), reply("no JSON"), reply("x"), reply("[]")});
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(reachable()) << i;
}

TEST_F(Reachable, EndWithoutBytesIsNoAnswer) {
  app.script({closeUnread(), readAndClose(), readAndReset()});
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(reachable()) << i;
}

TEST_F(Reachable, SilenceIsNoAnswerAfterThreeSeconds) {
  app.script({silence()});
  const auto start = Clock::now();
  EXPECT_FALSE(reachable());
  const auto took = Clock::now() - start;
  EXPECT_GE(took, 3s);
  EXPECT_LT(took, 18s);  // however busy the machine is
}

TEST(ReachableDeathTest, PortOutsideTheRangeAbortsSilently) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const std::int64_t port : {std::int64_t{-1}, std::int64_t{65536}, INT64_MIN, INT64_MAX}) {
    EXPECT_EXIT(bridge::reachable({.version = 1, .port = port, .token = ""}),
                testing::KilledBySignal(SIGABRT), testing::Eq(std::string()))
        << port;
  }
}

}  // namespace
