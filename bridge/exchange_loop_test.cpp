#include "bridge/exchange_loop.h"

#include <gtest/gtest.h>

#include <chrono>

#include <asio/post.hpp>

namespace {

using namespace std::chrono_literals;
using bridge::ExchangeLoop;
using bridge::UptimeClock;

class ExchangeLoopTurn : public testing::Test {
 protected:
  void prepare() {
    asio::post(turn.context(), [this] { ran = true; });
  }

  ExchangeLoop loop;
  ExchangeLoop::Turn turn{loop};
  bool ran = false;
};

TEST_F(ExchangeLoopTurn, RunsUntilItIsDone) {
  prepare();
  turn.runUntil(UptimeClock::now() + 1h, ran);
  EXPECT_TRUE(ran);
}

TEST_F(ExchangeLoopTurn, RunsNothingAfterTheDeadline) {
  prepare();
  turn.runUntil(UptimeClock::now() - 1ms, ran);
  EXPECT_FALSE(ran);
}

TEST_F(ExchangeLoopTurn, RunsWhatIsReadyWithoutADeadline) {
  prepare();
  turn.runReady();
  EXPECT_TRUE(ran);
  turn.runReady();
}

}  // namespace
