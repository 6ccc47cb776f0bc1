#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// What happens between the launch and its limit of 20 seconds. Waited out for real.
class Polling : public LaunchConversation {
 protected:
  // A call that ends in the application's not being started; returns how long it took.
  Seconds callInVain() {
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x", json::object(), 35s), failure(couldNotBeStarted));
    EXPECT_EQ(launches.count(), 1U);
    return Clock::now() - start;
  }
};

TEST_F(Polling, ApplicationThatNeverStartsIsGivenUpAfterTwentySeconds) {
  const Seconds took = callInVain();
  EXPECT_GE(took, Seconds(20));
  EXPECT_LT(took, Seconds(22.5));
  EXPECT_EQ(app.connectionCount(), 0U);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(2));
}

TEST_F(Polling, OpenThatFailsIsNotNoticed) {
  launches.script({.exitCode = 1});
  EXPECT_GE(callInVain(), Seconds(20));
}

TEST_F(Polling, UnusableFilesAreReadAgainAndAgain) {
  launches.script({.publish = "{\"version\":1,"});
  say(toolCall(R"({"name":"x"})"));
  launches.record(0);
  EXPECT_EQ(server->readLine(2s), std::nullopt);
  endpointFile.write("[]");
  EXPECT_EQ(server->readLine(1s), std::nullopt);
  const auto usable = Clock::now();
  endpointFile.publish(app.port());
  EXPECT_EQ(hear().at("result").size(), 1U);
  EXPECT_LT(Seconds(Clock::now() - usable), Seconds(2.4));
}

TEST_F(Polling, FreshFileOfTheLaunchedApplicationIsUsed) {
  launches.script({.waitFirst = 1500ms, .publish = EndpointFile::text(app.port(), "T", 9)});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  const Seconds took = Clock::now() - start;
  EXPECT_GE(took, Seconds(1.5));
  EXPECT_LT(took, Seconds(5));
  EXPECT_EQ(app.connectionCount(), 2U);
  EXPECT_EQ(json::parse(app.record(1).received).at("version"), 9);
}

TEST_F(Polling, PassesAreFourTenthsOfASecondApart) {
  endpointFile.publish(app.port());
  app.otherwise(readAndHangUp());
  const Seconds took = callInVain();
  EXPECT_GE(took, Seconds(20));
  EXPECT_LT(took, Seconds(23));
  const std::size_t probes = app.connectionCount();
  EXPECT_LE(probes, 51U);
  EXPECT_GE(probes, 40U);
  const auto first = app.record(1).opened;  // after the launch; the application may look up late
  for (std::size_t i = 2; i < probes; ++i) {
    const double pauses = static_cast<double>(i) - 1;
    EXPECT_GE(Seconds(app.record(i).opened - first), Seconds(0.4 * pauses - 0.3)) << i;
  }
}

TEST_F(Polling, SilentApplicationIsProbedForThreeSecondsInEachPass) {
  endpointFile.publish(app.port());
  app.otherwise(replyWhenReleased("{}"));
  const Seconds took = callInVain();
  EXPECT_GE(took, Seconds(23));
  EXPECT_LT(took, Seconds(29));
  EXPECT_EQ(app.connectionCount(), 7U);
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_FALSE(app.record(i).closedByServer.has_value()) << i;
  }
  for (std::size_t i = 0; i < 7; ++i) app.release();
  for (std::size_t i = 0; i < 7; ++i) EXPECT_TRUE(app.waitUntilClosedByServer(i)) << i;
  EXPECT_TRUE(staysSilent());
}

TEST_F(Polling, ProbeThatBeginsBeforeTheLimitIsNotShortened) {
  app.otherwise(silence());
  launches.script({.waitFirst = 18'400ms, .publish = EndpointFile::text(app.port())});
  const Seconds took = callInVain();
  EXPECT_GE(took, Seconds(21.4));
  EXPECT_LT(took, Seconds(25.5));
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(Polling, ProbeThatBeginsBeforeTheLimitMayBeAnsweredAfterIt) {
  app.script({[](AppConnection& connection) {
                connection.readRequest();
                connection.pause(2300ms);
                connection.write("{}");
              },
              succeed("[1]")});
  launches.script({.waitFirst = 18'400ms, .publish = EndpointFile::text(app.port())});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x", json::object(), 30s), textResult("[\n  1\n]"));
  EXPECT_GE(Seconds(Clock::now() - start), Seconds(20.5));
}

TEST_F(Polling, ApplicationThatMovesWhileItIsWaitedForIsFound) {
  ScriptedApp moved;
  app.otherwise(silence());
  launches.script({.publish = EndpointFile::text(app.port(), "old")});
  say(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitForConnections(1));
  endpointFile.publish(moved.port(), "new");
  EXPECT_EQ(hear().at("result").size(), 1U);
  EXPECT_EQ(json::parse(moved.record(0).received).at("token"), "new");
}

TEST_F(Polling, LimitOfTheCallItselfComesOnTop) {
  launches.script({.waitFirst = 2s, .publish = EndpointFile::text(app.port())});
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.pause(25s);
                connection.write(R"({"ok":true,"result":[25]})");
              }});
  EXPECT_EQ(callTool("x", json::object(), 40s), textResult("[\n  25\n]"));
}

}  // namespace
