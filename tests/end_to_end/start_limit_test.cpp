#include <algorithm>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// From the launch to its limit of 20 seconds, which most tests really wait for.
class StartLimit : public LaunchConversation {
 protected:
  // A call for which the application does not start. Returns how long it took.
  Seconds callInVain() {
    start = Clock::now();
    EXPECT_EQ(callTool("x"), errorResult(couldNotBeStarted));
    const Seconds took = Clock::now() - start;
    EXPECT_EQ(launches.count(), 1U);
    EXPECT_GE(took, startLimit);
    return took;
  }

  // How long after the start of the call the application saw that probe. It can see one late, but
  // not early.
  Seconds timeOfProbe(std::size_t index) { return app.record(index).opened - start; }

  Clock::time_point start;
};

TEST_F(StartLimit, EndsTheWaitForAnApplicationThatNeverStarts) {
  EXPECT_LT(callInVain(), startLimit + lateness);
  EXPECT_EQ(app.connectionCount(), 0U);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(2));
}

TEST_F(StartLimit, IsNotShortenedIfOpenFails) {
  launches.script({.exitCode = 1});
  callInVain();
}

TEST_F(StartLimit, UnusableEndpointFileIsReadAgainUntilItIsUsable) {
  launches.script({.publish = "{\"version\":1,"});
  sendLine(toolCall(R"({"name":"x"})"));
  launches.record(0);
  EXPECT_EQ(server->readLine(2s), std::nullopt);
  endpointFile.write("[]");
  EXPECT_EQ(server->readLine(1s), std::nullopt);
  endpointFile.publish(app.port());
  EXPECT_EQ(receive().at("result").size(), 1U);
}

TEST_F(StartLimit, EndpointOfTheLaunchedApplicationIsUsed) {
  launches.script({.waitFirst = 1500ms, .publish = EndpointFile::text(app.port(), "T", 9)});
  const auto begin = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_GE(Seconds(Clock::now() - begin), Seconds(1.5));
  EXPECT_EQ(app.connectionCount(), 2U);
  EXPECT_EQ(json::parse(app.record(1).received).at("version"), 9);
}

TEST_F(StartLimit, ProbesAreFourTenthsOfASecondApart) {
  endpointFile.publish(app.port());
  app.setDefault(readAndClose());
  EXPECT_LT(callInVain(), startLimit + probeLimit + lateness);
  const std::size_t probes = app.connectionCount();
  EXPECT_LE(probes, 51U);
  Seconds shortest = 1h;
  for (std::size_t i = 1; i < probes; ++i) {  // 0 is the probe before the launch
    EXPECT_GE(timeOfProbe(i), 0.4 * static_cast<double>(i - 1) * 1s) << i;
    if (i > 1) shortest = std::min(shortest, timeOfProbe(i) - timeOfProbe(i - 1));
  }
  EXPECT_LT(shortest, Seconds(0.7));
}

TEST_F(StartLimit, SilentApplicationIsProbedForThreeSecondsEachTime) {
  endpointFile.publish(app.port());
  app.setDefault(replyWhenReleased("{}"));
  EXPECT_LT(callInVain(), startLimit + 2 * probeLimit + lateness);
  const std::size_t probes = app.connectionCount();
  EXPECT_LE(probes, 7U);
  EXPECT_GE(probes, 5U);  // 7 unless the machine is very busy
  for (std::size_t i = 0; i < probes; ++i) {
    EXPECT_GE(timeOfProbe(i), static_cast<double>(i) * probeLimit) << i;
    EXPECT_FALSE(app.record(i).closedByServer.has_value()) << i;
  }
  for (std::size_t i = 0; i < probes; ++i) app.release();
  for (std::size_t i = 0; i < probes; ++i) EXPECT_TRUE(app.waitUntilClosedByServer(i)) << i;
  EXPECT_TRUE(hasNoFurtherReply());
}

class LastProbe : public StartLimit {
 protected:
  // Publishes the endpoint shortly before the limit.
  void SetUp() override {
    StartLimit::SetUp();
    launches.script({.waitFirst = 18'400ms, .publish = EndpointFile::text(app.port())});
  }

  bool isMissing() { return app.connectionCount() == 0; }

  static constexpr const char* tooLate = "the machine is too busy: the endpoint was published late";
};

TEST_F(LastProbe, IsNotShortened) {
  app.setDefault(silence());
  const Seconds took = callInVain();
  if (isMissing()) GTEST_SKIP() << tooLate;
  EXPECT_EQ(app.connectionCount(), 1U);
  EXPECT_GE(took, Seconds(18.4) + probeLimit);
}

TEST_F(LastProbe, MayBeAnsweredAfterTheLimit) {
  app.script({replyAfter(2300ms, "{}"), succeed("[1]")});
  start = Clock::now();
  const json result = callTool("x");
  if (isMissing()) GTEST_SKIP() << tooLate;
  EXPECT_EQ(result, textResult("[\n  1\n]"));
  EXPECT_GE(Clock::now() - start, Seconds(20.5));
}

TEST_F(StartLimit, ApplicationThatMovesToAnotherPortIsFound) {
  ScriptedApp moved;
  app.setDefault(silence());
  launches.script({.publish = EndpointFile::text(app.port(), "old")});
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitForConnections(1));
  endpointFile.publish(moved.port(), "new");
  EXPECT_EQ(receive().at("result").size(), 1U);
  EXPECT_EQ(json::parse(moved.record(0).received).at("token"), "new");
}

TEST_F(StartLimit, DoesNotShortenTheLimitOfTheCall) {
  launches.script({.waitFirst = 2s, .publish = EndpointFile::text(app.port())});
  app.script({succeed(), replyAfter(25s, R"({"ok":true,"result":[25]})")});
  EXPECT_EQ(callTool("x"), textResult("[\n  25\n]"));
}

}  // namespace
