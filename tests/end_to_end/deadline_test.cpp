#include <csignal>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr auto beyondTheLimit = 36s;

// Calls that the application does not answer within the 30 seconds they have. Each case
// waits these out for real.
class Deadline : public Conversation {
 protected:
  // A call that is heard of no more before its deadline.
  void callWithoutResponse() {
    const auto start = Clock::now();
    EXPECT_EQ(callTool("slow", json::object(), beyondTheLimit), failure(noResponse));
    const Seconds took = Clock::now() - start;
    EXPECT_GE(took, Seconds(30));
    EXPECT_LT(took, Seconds(33));
  }

  static ScriptedApp::Script answerThenStopListening(ScriptedApp& app) {
    return [&app](AppConnection& connection) {
      connection.readRequest();
      app.stopListening();
      connection.write(R"({"ok":true})");
    };
  }
};

TEST_F(Deadline, SilentApplicationGivesNoResponseAfterThirtySeconds) {
  app.script({answer(), silence()});
  callWithoutResponse();
  EXPECT_FALSE(app.record(1).closedByServer.has_value()) << "the exchange is left to itself";
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(Deadline, AbandonedExchangeClosesWhenTheLateReplyComesWhileTheServerIsIdle) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["late"]})")});
  callWithoutResponse();
  std::this_thread::sleep_for(1s);
  EXPECT_FALSE(app.record(1).closedByServer.has_value());
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1, 5s));
  EXPECT_TRUE(staysSilent());
  sayGoodbye();
}

TEST_F(Deadline, AbandonedExchangeClosesWhenTheApplicationEndsItsStream) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.waitForRelease();
                connection.halfClose();
              }});
  callWithoutResponse();
  EXPECT_FALSE(app.record(1).closedByServer.has_value());
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1, 5s));
}

TEST_F(Deadline, LateReplyIsNotTakenForThatOfTheNextCall) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["late"]})"), answer(),
              [](AppConnection& connection) {
                connection.readRequest();
                connection.pause(2s);
                connection.write(R"({"ok":true,"result":["second"]})");
              }});
  callWithoutResponse();
  say(toolCall(R"({"name":"second"})", "2"));
  ASSERT_TRUE(app.waitForConnections(4));
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1, 5s));
  const json reply = hear();
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("result"), textResult("[\n  \"second\"\n]"));
  EXPECT_TRUE(staysSilent());
}

TEST_F(Deadline, EndOfInputEndsTheProcessThoughAnExchangeIsAlive) {
  app.script({answer(), silence()});
  callWithoutResponse();
  sayGoodbye();
}

TEST_F(Deadline, ReplyThatIsStillComingInAtTheDeadlineIsUnreadable) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(std::string(20'000, ' '));  // pauses in it may be longer then
                for (int i = 0; i < 3500; ++i) {
                  connection.write("{");
                  connection.pause(std::chrono::milliseconds(10));
                }
              }});
  const auto start = Clock::now();
  EXPECT_EQ(callTool("x", json::object(), beyondTheLimit), failure(unreadableReply));
  EXPECT_GE(Seconds(Clock::now() - start), Seconds(30));
}

// Stopped by a debugger, say, or by a host that saves what it can.
TEST_F(Deadline, ReplyThatCameWhileTheServerWasStoppedIsTaken) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["came"]})")});
  say(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilReceived(1, 1));
  ::kill(server->pid(), SIGSTOP);
  app.release();
  std::this_thread::sleep_for(31s);
  ::kill(server->pid(), SIGCONT);
  EXPECT_EQ(hear().at("result"), textResult("[\n  \"came\"\n]"));
}

TEST_F(Deadline, RequestIsNotDeliveredLateThoughTheServerWasStopped) {
  app.script({answerThenStopListening(app)});
  say(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilClosedByServer(0));
  std::this_thread::sleep_for(1s);
  ::kill(server->pid(), SIGSTOP);
  app.listenAgain();
  std::this_thread::sleep_for(30s);
  ::kill(server->pid(), SIGCONT);
  EXPECT_EQ(hear().at("result"), failure(noResponse));
  EXPECT_FALSE(app.waitUntilReceived(1, 1, 2s));
}

TEST_F(Deadline, WaitingCostsNoProcessorTime) {
  app.script({answer(), silence()});
  callWithoutResponse();
  std::this_thread::sleep_for(2s);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(2));
}

TEST_F(Deadline, RefusedConnectionIsTriedAgainUntilTheDeadline) {
  app.script({answerThenStopListening(app)});
  callWithoutResponse();
  EXPECT_EQ(app.connectionCount(), 1U);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(3));
}

TEST_F(Deadline, RequestThatWasNeverDeliveredIsNotDeliveredLater) {
  app.script({answerThenStopListening(app)});
  callWithoutResponse();
  app.listenAgain();
  EXPECT_FALSE(app.waitUntilReceived(1, 1, 5s));
  const std::size_t before = app.connectionCount();
  callTool("fresh");
  EXPECT_EQ(app.connectionCount(), before + 2);
  EXPECT_EQ(json::parse(app.record(before + 1).received).at("tool"), "fresh");
}

TEST_F(Deadline, ApplicationThatListensAgainWithinTheLimitIsReachedAtOnce) {
  app.script({answerThenStopListening(app), succeed("[\"back\"]")});
  say(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilClosedByServer(0));
  std::this_thread::sleep_for(4s);
  const auto back = Clock::now();
  app.listenAgain();
  EXPECT_EQ(hear().at("result"), textResult("[\n  \"back\"\n]"));
  EXPECT_LT(Seconds(Clock::now() - back), Seconds(2));
  EXPECT_EQ(app.connectionCount(), 2U);
}

}  // namespace
