#include "bridge/exchange.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/support/sanitizers.h"
#include "tests/unit/exchange_test.h"

namespace {

using namespace std::chrono_literals;
using bridge::Outcome;

using Exchange = ExchangeTest;

TEST_F(Exchange, ReturnsTheReply) {
  app.script({reply(R"({"to":"you"})")});
  Outcome outcome = exchange(30s, R"({"from":"me"})");
  ASSERT_TRUE(outcome.ended && outcome.reply);
  EXPECT_EQ(outcome.reply->document()->root().member("to")->string(), "you");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_EQ(app.record(0).received, R"({"from":"me"})");
}

TEST_F(Exchange, HasAConnectionOfItsOwn) {
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(exchange(30s).reply) << i;
  EXPECT_EQ(app.connectionCount(), 20U);
}

TEST_F(Exchange, ReturnsAPartOfAReplyAtTheLimit) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    connection.writeUntilClosed("{", 20ms);
  }});
  const Outcome outcome = exchange(1s);
  EXPECT_TRUE(outcome.ended);
  EXPECT_TRUE(outcome.reply);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

// UndefinedBehaviorSanitizer opens a pipe to check the type of an object and reports an error if it
// cannot.
#if !UNDER_UNDEFINED_BEHAVIOR_SANITIZER
TEST_F(Exchange, WithoutADescriptorReturnsNone) {
  const auto exchangeWithoutDescriptors = [port = app.port()] {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{.rlim_cur = 3, .rlim_max = limit.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const Outcome outcome = bridge::exchange(port, asBytes("{}"), 30s);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    std::exit(outcome.ended && !outcome.reply ? 0 : 1);
  };
  EXPECT_EXIT(exchangeWithoutDescriptors(), testing::ExitedWithCode(0), "^$");
}
#endif

TEST_F(Exchange, ReturnsNoneBeforeTheLimitIfTheApplicationCloses) {
  app.script({closeUnread(), readAndClose(), readAndReset()});
  for (int i = 0; i < 3; ++i) {
    const Outcome outcome = exchange(30s);
    EXPECT_TRUE(outcome.ended) << i;
    EXPECT_FALSE(outcome.reply) << i;
    EXPECT_LT(took, 30s) << i;
  }
}

TEST_F(Exchange, RefusedConnectionIsTriedUntilTheLimit) {
  app.stopListening();
  const Outcome outcome = exchange(1s);
  EXPECT_FALSE(outcome.ended);
  EXPECT_FALSE(outcome.reply);
  EXPECT_GE(took, 1s);
}

TEST_F(Exchange, RequestThatNeverConnectedIsDroppedAtTheLimit) {
  app.stopListening();
  exchange(1s);
  app.listenAgain();
  EXPECT_FALSE(app.waitForConnections(1, 500ms));
}

TEST(ExchangeOnPortZero, IsRefusedUntilTheLimit) {
  const Outcome outcome = bridge::exchange(0, asBytes("{}"), 1s);
  EXPECT_FALSE(outcome.ended);
  EXPECT_FALSE(outcome.reply);
}

TEST(ExchangeOnTheLastPort, IsRefusedUntilTheLimit) {
  EXPECT_FALSE(bridge::exchange(65535, asBytes("{}"), 1s).ended);
}

void exchangeWithOutputOnStandardError(std::int64_t port) {
  std::fflush(stdout);  // the output of the test program so far
  dup2(STDERR_FILENO, STDOUT_FILENO);
  bridge::exchange(port, asBytes("{}"), 1s);
}

TEST(ExchangeDeathTest, PortOutsideTheRangeAbortsSilently) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const std::int64_t port : {std::int64_t{-1}, std::int64_t{65536}, INT64_MIN, INT64_MAX}) {
    EXPECT_EXIT(exchangeWithOutputOnStandardError(port), testing::KilledBySignal(SIGABRT),
                testing::Eq(std::string()))
        << port;
  }
}

}  // namespace
