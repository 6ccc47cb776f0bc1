#include "bridge/exchange.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/support/sanitizers.h"
#include "tests/support/scripts.h"
#include "tests/unit/as_bytes.h"

namespace {

using namespace std::chrono_literals;
using bridge::Outcome;
using Clock = std::chrono::steady_clock;

class Exchange : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }

  Outcome exchange(std::chrono::seconds limit, std::string_view request = "{}") {
    const auto begun = Clock::now();
    Outcome outcome = bridge::exchange(app.port(), asBytes(request), limit);
    took = Clock::now() - begun;
    return outcome;
  }

  ScriptedApp app;
  Clock::duration took{};
};

TEST_F(Exchange, BringsTheReply) {
  app.script({reply(R"({"to":"you"})")});
  Outcome outcome = exchange(30s, R"({"from":"me"})");
  ASSERT_TRUE(outcome.ended && outcome.reply);
  EXPECT_EQ(outcome.reply->document()->root().member("to")->string(), "you");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_EQ(app.record(0).received, R"({"from":"me"})");
}

TEST_F(Exchange, EachHasAConnectionOfItsOwn) {
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(exchange(30s).reply) << i;
  EXPECT_EQ(app.connectionCount(), 20U);
}

TEST_F(Exchange, DeliversAtTheDeadlineWhatHasComeOfAReply) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    for (int i = 0; i < 200; ++i) {
      connection.write("{");
      connection.pause(20ms);
    }
  }});
  const Outcome outcome = exchange(1s);
  EXPECT_TRUE(outcome.ended);
  EXPECT_TRUE(outcome.reply);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

// Checking an object's type, the sanitizer opens a pipe, and takes it for a fault if it can't.
#if !UNDER_UNDEFINED_BEHAVIOR_SANITIZER
TEST_F(Exchange, EndsWithNoneWhenNoDescriptorIsLeft) {
  const auto withoutDescriptors = [port = app.port()] {
    const rlimit none{.rlim_cur = 3, .rlim_max = 3};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const Outcome outcome = bridge::exchange(port, asBytes("{}"), 30s);
    std::_Exit(outcome.ended && !outcome.reply ? 0 : 1);
  };
  EXPECT_EXIT(withoutDescriptors(), testing::ExitedWithCode(0), "^$");
}
#endif

TEST_F(Exchange, EndsWithNoneWhenTheApplicationHangsUp) {
  app.script({hangUp(), readAndHangUp(), [](AppConnection& connection) {
                connection.readRequest();
                connection.reset();
              }});
  for (int i = 0; i < 3; ++i) {
    const Outcome outcome = exchange(30s);
    EXPECT_TRUE(outcome.ended) << i;
    EXPECT_FALSE(outcome.reply) << i;
    EXPECT_LT(took, 10s) << i;
  }
}

TEST_F(Exchange, RefusedConnectionLastsUntilTheLimit) {
  app.stopListening();
  const Outcome outcome = exchange(1s);
  EXPECT_FALSE(outcome.ended);
  EXPECT_FALSE(outcome.reply);
  EXPECT_GE(took, 1s);
  EXPECT_LT(took, 10s);
}

TEST_F(Exchange, RequestThatWasNeverSentIsForgottenAtTheLimit) {
  app.stopListening();
  exchange(1s);
  app.listenAgain();
  EXPECT_FALSE(app.waitForConnections(1, 500ms));
}

TEST_F(Exchange, SilenceLastsUntilTheLimitAndLeavesTheConnectionOpen) {
  app.script({silence()});
  const Outcome outcome = exchange(1s);
  EXPECT_FALSE(outcome.ended);
  EXPECT_FALSE(outcome.reply);
  EXPECT_GE(took, 1s);
  EXPECT_LT(took, 10s);
  EXPECT_FALSE(app.waitUntilClosedByServer(0, 300ms));
}

// The test's thread runs nothing of the exchange while it waits for the connection to close.
TEST_F(Exchange, AbandonedOneGoesOnInTheBackgroundAndClosesOnTheLateReply) {
  app.script({replyWhenReleased("{}")});
  EXPECT_FALSE(exchange(1s).ended);
  EXPECT_FALSE(app.waitUntilClosedByServer(0, 300ms));
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(Exchange, AbandonedOneClosesWhenTheApplicationDoes) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    connection.waitForRelease();
    connection.halfClose();
  }});
  EXPECT_FALSE(exchange(1s).ended);
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(Exchange, AbandonedOneGoesOnSendingItsRequest) {
  const std::string request = "[\"" + std::string(20'000'000, 'x') + "\"]";
  app.script({[](AppConnection& connection) {
    connection.waitForRelease();
    connection.readRequest();
    connection.write("{}");
  }});
  EXPECT_FALSE(exchange(1s, request).ended);
  app.release();
  EXPECT_TRUE(app.waitUntilReceived(0, request.size()));
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(Exchange, AbandonedOneDoesNotTouchTheNext) {
  app.script({replyWhenReleased(R"({"to":"the first"})"), reply(R"({"to":"the second"})")});
  EXPECT_FALSE(exchange(1s).ended);
  Outcome second = exchange(30s);
  ASSERT_TRUE(second.reply);
  EXPECT_EQ(second.reply->document()->root().member("to")->string(), "the second");
  EXPECT_FALSE(app.record(0).closedByServer);
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(Exchange, LateReplyDuringTheNextGoesToNobody) {
  app.script({replyWhenReleased(R"({"to":"the first"})"), [this](AppConnection& connection) {
                connection.readRequest();
                app.release();
                connection.pause(300ms);
                connection.write(R"({"to":"the second"})");
              }});
  EXPECT_FALSE(exchange(1s).ended);
  Outcome second = exchange(30s);
  ASSERT_TRUE(second.reply);
  EXPECT_EQ(second.reply->document()->root().member("to")->string(), "the second");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(Exchange, ManyAbandonedOnesEndEachByItself) {
  app.script({replyWhenReleased("{}"), replyWhenReleased("{}"), replyWhenReleased("{}")});
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(exchange(1s).ended);
  for (int i = 0; i < 3; ++i) app.release();
  for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(app.waitUntilClosedByServer(i)) << i;
}

TEST(ExchangeOnPortZero, IsRefusedUntilTheLimit) {
  const Outcome outcome = bridge::exchange(0, asBytes("{}"), 1s);
  EXPECT_FALSE(outcome.ended);
  EXPECT_FALSE(outcome.reply);
}

void exchangeWithAllOutputSeen(std::int64_t port) {
  std::fflush(stdout);  // what the test program itself has said so far
  dup2(STDERR_FILENO, STDOUT_FILENO);
  bridge::exchange(port, asBytes("{}"), 1s);
}

TEST(ExchangeDeathTest, PortOutsideTheRangeEndsTheProcessWithoutAWord) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const std::int64_t port : {std::int64_t{-1}, std::int64_t{65536}, INT64_MIN, INT64_MAX}) {
    EXPECT_EXIT(exchangeWithAllOutputSeen(port), testing::KilledBySignal(SIGABRT),
                testing::Eq(std::string()))
        << port;
  }
}

}  // namespace
