#include <csignal>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Applications that answer their probe: nothing is launched.
class Reachable : public LaunchConversation {
 protected:
  void SetUp() override {
    LaunchConversation::SetUp();
    endpointFile.publish(app.port());
  }
  void TearDown() override {
    if (!IsSkipped()) {
      std::this_thread::sleep_for(300ms);  // time for a launched program to begin
      EXPECT_EQ(launches.count(), 0U);
    }
    LaunchConversation::TearDown();
  }
};

TEST_F(Reachable, WhenTheProbeIsAnswered) {
  app.script({answer(), succeed("[1]")});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(Reachable, WhenTheProbeIsRefused) {
  app.otherwise(refuse("The token is wrong."));
  EXPECT_EQ(callTool("x"), failure("The token is wrong."));
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(Reachable, WhenTheProbeGetsAnyBytesAtAll) {
  for (const char* bytes : {"x", "{\"ok\":", "[", "\xFF", "\n", "42"}) {
    app.script({reply(bytes), succeed("[1]")});
    EXPECT_EQ(callTool("x"), textResult("[\n  1\n]")) << bytes;
  }
}

TEST_F(Reachable, WhenTheProbeGetsAByteBeforeTheEndOfTheStream) {
  app.script({[](AppConnection& connection) {
                connection.readRequest();
                connection.write("x");
                connection.hangUp();
              },
              succeed("[1]")});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
}

TEST_F(Reachable, WhenTheProbeGetsAReplyOfManyMegabytes) {
  app.script({reply(std::string(6'000'000, ' ')), succeed("[1]")});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
}

TEST_F(Reachable, WhenTheProbeIsAnsweredWithinThreeSeconds) {
  app.script({[](AppConnection& connection) {
                connection.readRequest();
                connection.pause(1500ms);
                connection.write("{}");
              },
              succeed("[1]")});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
}

TEST_F(Reachable, WhenTheApplicationComesUpWithinTheProbesLimit) {
  app.stopListening();
  say(toolCall(R"({"name":"x"})"));
  EXPECT_FALSE(app.waitForConnections(1, 1s));
  app.listenAgain();
  EXPECT_EQ(hear().at("result").size(), 1U);
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(Reachable, WhenTheAnswerToTheProbeIsStillComingInAfterThreeSeconds) {
  app.script({[](AppConnection& connection) {
                connection.readRequest();
                for (int i = 0; i < 500; ++i) {
                  connection.write("{");
                  connection.pause(std::chrono::milliseconds(10));
                }
              },
              succeed("[]")});
  EXPECT_EQ(callTool("x"), textResult("[]"));
  EXPECT_EQ(launches.count(), 0U);
}

TEST_F(Reachable, AnswerOfTheProbeIsThrownAway) {
  app.script({succeed(R"(["probe"])"), refuse("call")});
  EXPECT_EQ(callTool("drive_status"), failure("call"));
}

// Applications that do not: the launch is made, and publishes the endpoint of one that does.
class Unreachable : public LaunchConversation {
 protected:
  // A call whose first probe, of the application published, fails; then a healthy
  // application is launched. Returns how long it was to the launch.
  Seconds launchAfterProbing() {
    endpointFile.publish(app.port(), "stale");
    launches.script({.publish = EndpointFile::text(healthy.port(), "fresh", 2)});
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x").size(), 1U);
    EXPECT_EQ(launches.count(), 1U);
    EXPECT_EQ(healthy.connectionCount(), 2U);
    EXPECT_EQ(json::parse(healthy.record(1).received).at("token"), "fresh");
    return launches.startOf(0) - start;
  }

  ScriptedApp healthy;
};

TEST_F(Unreachable, AfterThreeSecondsWhenNothingListens) {
  app.stopListening();
  const Seconds took = launchAfterProbing();
  EXPECT_GE(took, Seconds(3));
  EXPECT_LT(took, Seconds(5));
}

TEST_F(Unreachable, AfterThreeSecondsWhenTheProbeIsNotAnswered) {
  app.otherwise(silence());
  const Seconds took = launchAfterProbing();
  EXPECT_GE(took, Seconds(3));
  EXPECT_LT(took, Seconds(5));
  EXPECT_FALSE(app.record(0).closedByServer.has_value());
}

TEST_F(Unreachable, AtOnceWhenTheApplicationHangsUp) {
  app.otherwise(readAndHangUp());
  EXPECT_LT(launchAfterProbing(), Seconds(2));
}

TEST_F(Unreachable, AtOnceWhenTheApplicationBreaksTheConnectionOff) {
  app.otherwise(reset());
  EXPECT_LT(launchAfterProbing(), Seconds(2));
}

TEST_F(Unreachable, WhenTheAnswerToTheProbeComesLate) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    connection.pause(3500ms);
    connection.write(R"({"ok":true,"result":["late"]})");
  }});
  endpointFile.publish(app.port());
  launches.script({});
  app.otherwise(succeed(R"(["in time"])"));
  EXPECT_EQ(callTool("x", json::object(), 15s), textResult("[\n  \"in time\"\n]"));
  launches.record(0);  // the application runs, but is judged not to
  EXPECT_TRUE(app.waitUntilClosedByServer(0, 5s));
}

TEST_F(Unreachable, PortZeroIsNotFatal) {
  endpointFile.publish(0);
  launches.script({.publish = EndpointFile::text(healthy.port())});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x", json::object(), 15s).size(), 1U);
  EXPECT_GE(Seconds(launches.startOf(0) - start), Seconds(3));
}

TEST_F(Unreachable, RequestOfAProbeThatNeverConnectedIsNotDeliveredLater) {
  app.stopListening();
  launchAfterProbing();
  app.listenAgain();
  EXPECT_FALSE(app.waitUntilReceived(0, 1, 4s));
}

TEST_F(Unreachable, EndOfInputEndsTheProcessThoughAProbeIsAlive) {
  app.otherwise(silence());
  launchAfterProbing();
  sayGoodbye();
}

TEST_F(Unreachable, StoppedAndContinuedProcessKeepsItsLimit) {
  app.otherwise(silence());
  endpointFile.publish(app.port());
  launches.script({.publish = EndpointFile::text(healthy.port())});
  const auto start = Clock::now();
  say(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitForConnections(1));
  for (int round = 0; round < 10; ++round) {
    ::kill(server->pid(), SIGSTOP);
    ::kill(server->pid(), SIGCONT);
    std::this_thread::sleep_for(50ms);
  }
  EXPECT_EQ(hear().at("result").size(), 1U);
  const Seconds took = launches.startOf(0) - start;
  EXPECT_GE(took, Seconds(3));
  EXPECT_LT(took, Seconds(5));
}

}  // namespace
