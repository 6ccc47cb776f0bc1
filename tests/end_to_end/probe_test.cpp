#include <csignal>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

const json one = textResult("[\n  1\n]");

// Probes that the application answers. It is not launched.
class AnsweredProbe : public LaunchConversation {
 protected:
  void SetUp() override {
    LaunchConversation::SetUp();
    endpointFile.publish(app.port());
  }
  void TearDown() override {
    if (!IsSkipped()) {
      std::this_thread::sleep_for(300ms);  // time for a launched program to start
      EXPECT_EQ(launches.count(), 0U);
    }
    LaunchConversation::TearDown();
  }
};

TEST_F(AnsweredProbe, WithSuccess) {
  app.script({succeed(), succeed("[1]")});
  EXPECT_EQ(callTool("x"), one);
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(AnsweredProbe, WithAnError) {
  app.setDefault(refuse("The token is wrong."));
  EXPECT_EQ(callTool("x"), errorResult("The token is wrong."));
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(AnsweredProbe, WithAnyBytes) {
  for (const char* bytes : {"x", "{\"ok\":", "[", "\xFF", "\n", "42"}) {
    app.script({reply(bytes), succeed("[1]")});
    EXPECT_EQ(callTool("x"), one) << bytes;
  }
}

TEST_F(AnsweredProbe, WithAByteAndTheEndOfTheStream) {
  app.script({replyAndHalfClose("x"), succeed("[1]")});
  EXPECT_EQ(callTool("x"), one);
}

TEST_F(AnsweredProbe, WithManyMegabytes) {
  app.script({reply(std::string(6'000'000, ' ')), succeed("[1]")});
  EXPECT_EQ(callTool("x"), one);
}

TEST_F(AnsweredProbe, AfterMoreThanASecond) {
  app.script({replyAfter(1500ms, "{}"), succeed("[1]")});
  EXPECT_EQ(callTool("x"), one);
}

TEST_F(AnsweredProbe, ByAnApplicationThatStartsToListen) {
  app.stopListening();
  sendLine(toolCall(R"({"name":"x"})"));
  EXPECT_FALSE(app.waitForConnections(1, 1s));
  app.listenAgain();
  EXPECT_EQ(receive().at("result").size(), 1U);
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(AnsweredProbe, ByAReplyThatIsStillArrivingAtTheLimit) {
  app.script({[](AppConnection& connection) {
                connection.readRequest();
                connection.writeUntilClosed("{", 5ms);
              },
              succeed("[1]")});
  EXPECT_EQ(callTool("x"), one);
}

TEST_F(AnsweredProbe, IsNotTheReplyToTheCall) {
  app.script({succeed(R"(["probe"])"), refuse("call")});
  EXPECT_EQ(callTool("drive_status"), errorResult("call"));
}

// Probes that the application does not answer. A healthy one is launched and publishes its
// endpoint.
class UnansweredProbe : public LaunchConversation {
 protected:
  // Makes a call of which the first probe fails. Returns how long after its start the launch was.
  Seconds callAndLaunch() {
    const std::size_t launchesBefore = launches.count();
    const std::size_t connectionsBefore = healthy.connectionCount();
    endpointFile.publish(app.port(), "old");
    launches.script({.publish = EndpointFile::text(healthy.port(), "new", 2)});
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x").size(), 1U);
    EXPECT_EQ(launches.count(), launchesBefore + 1);
    EXPECT_EQ(healthy.connectionCount(), connectionsBefore + 2);
    EXPECT_EQ(json::parse(healthy.record(connectionsBefore + 1).received).at("token"), "new");
    return launches.startOf(launchesBefore) - start;
  }

  void expectLaunchAtTheLimit() {
    const Seconds took = callAndLaunch();
    EXPECT_GE(took, probeLimit);
    EXPECT_LT(took, probeLimit + lateness);
  }

  // On a busy machine the launched program may start late, but not every time.
  void expectLaunchBeforeTheLimit() {
    Seconds took = callAndLaunch();
    for (int attempt = 0; took >= probeLimit && attempt < 5; ++attempt) took = callAndLaunch();
    EXPECT_LT(took, probeLimit);
  }

  ScriptedApp healthy;
};

TEST_F(UnansweredProbe, OfAPortOnWhichNothingListens) {
  app.stopListening();
  expectLaunchAtTheLimit();
}

TEST_F(UnansweredProbe, OfASilentApplication) {
  app.setDefault(silence());
  expectLaunchAtTheLimit();
  EXPECT_FALSE(app.record(0).closedByServer.has_value());
}

TEST_F(UnansweredProbe, OfAnApplicationThatClosesDoesNotWaitForTheLimit) {
  app.setDefault(readAndClose());
  expectLaunchBeforeTheLimit();
}

TEST_F(UnansweredProbe, OfAnApplicationThatResetsDoesNotWaitForTheLimit) {
  app.setDefault(resetUnread());
  expectLaunchBeforeTheLimit();
}

TEST_F(UnansweredProbe, MayBeAnsweredLate) {
  app.script({replyAfter(3500ms, R"({"ok":true,"result":["late"]})")});
  endpointFile.publish(app.port());
  app.setDefault(succeed(R"(["in time"])"));
  EXPECT_EQ(callTool("x"), textResult("[\n  \"in time\"\n]"));
  EXPECT_EQ(launches.record(0).at("arguments").size(), 4U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(UnansweredProbe, OfPortZero) {
  endpointFile.publish(0);
  launches.script({.publish = EndpointFile::text(healthy.port())});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x").size(), 1U);
  EXPECT_GE(launches.startOf(0) - start, probeLimit);
}

TEST_F(UnansweredProbe, ThatNeverConnectedIsNotSentLater) {
  app.stopListening();
  callAndLaunch();
  app.listenAgain();
  EXPECT_FALSE(app.waitUntilReceived(0, 1, 4s));
}

TEST_F(UnansweredProbe, DoesNotDelayTheExit) {
  app.setDefault(silence());
  callAndLaunch();
  expectCleanExit();
}

TEST_F(UnansweredProbe, HasTheSameLimitInAProcessThatIsStoppedAndContinued) {
  app.setDefault(silence());
  endpointFile.publish(app.port());
  launches.script({.publish = EndpointFile::text(healthy.port())});
  const auto start = Clock::now();
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitForConnections(1));
  for (int round = 0; round < 10; ++round) {
    ::kill(server->pid(), SIGSTOP);
    ::kill(server->pid(), SIGCONT);
    std::this_thread::sleep_for(50ms);
  }
  EXPECT_EQ(receive().at("result").size(), 1U);
  const Seconds took = launches.startOf(0) - start;
  EXPECT_GE(took, probeLimit);
  EXPECT_LT(took, probeLimit + lateness);
}

}  // namespace
