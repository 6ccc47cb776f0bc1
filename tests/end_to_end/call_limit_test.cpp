#include <csignal>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Calls that get no reply within their limit of 30 seconds, which each test really waits for.
class CallLimit : public Conversation {
 protected:
  void callWithoutResponse() {
    const auto start = Clock::now();
    EXPECT_EQ(callTool("slow"), errorResult(noResponse));
    const Seconds took = Clock::now() - start;
    EXPECT_GE(took, callLimit);
    EXPECT_LT(took, callLimit + lateness);
  }

  // The script of a probe: the application is gone when the call connects.
  ScriptedApp::Script succeedAndStopListening() {
    return [this](AppConnection& connection) {
      connection.readRequest();
      app.stopListening();
      connection.write(R"({"ok":true})");
    };
  }
};

TEST_F(CallLimit, EndsACallWithoutReply) {
  app.script({succeed(), silence()});
  callWithoutResponse();
  EXPECT_FALSE(app.record(1).closedByServer.has_value()) << "the abandoned connection stays open";
  EXPECT_EQ(app.connectionCount(), 2U);
}

TEST_F(CallLimit, LateReplyClosesTheAbandonedConnectionOfAnIdleServer) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["late"]})")});
  callWithoutResponse();
  std::this_thread::sleep_for(1s);
  EXPECT_FALSE(app.record(1).closedByServer.has_value());
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
  EXPECT_TRUE(hasNoFurtherReply());
  expectCleanExit();
}

TEST_F(CallLimit, EndOfTheStreamClosesTheAbandonedConnection) {
  app.script({succeed(), [](AppConnection& connection) {
                connection.readRequest();
                connection.waitForRelease();
                connection.halfClose();
              }});
  callWithoutResponse();
  EXPECT_FALSE(app.record(1).closedByServer.has_value());
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(CallLimit, LateReplyIsNotTheReplyToTheNextCall) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["late"]})"), succeed(),
              replyAfter(2s, R"({"ok":true,"result":["second"]})")});
  callWithoutResponse();
  sendLine(toolCall(R"({"name":"second"})", "2"));
  ASSERT_TRUE(app.waitForConnections(4));
  app.release();
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
  const json reply = receive();
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("result"), textResult("[\n  \"second\"\n]"));
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(CallLimit, EndOfInputEndsTheProcessDespiteAnAbandonedConnection) {
  app.script({succeed(), silence()});
  callWithoutResponse();
  expectCleanExit();
}

// The application writes until the server closes the connection. If a write was so late that the
// server treated what it had as the whole reply, the call is made again.
TEST_F(CallLimit, EndsAReplyThatIsStillArriving) {
  Seconds took{};
  bool wasLate = false;
  do {
    app.script({succeed(), [](AppConnection& connection) {
                  connection.readRequest();
                  connection.write(std::string(20'000, ' '));  // the start of a big reply
                  connection.writeUntilClosed("{", 50ms);
                }});
    const auto start = Clock::now();
    EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
    took = Clock::now() - start;
    const std::size_t call = app.connectionCount() - 1;
    wasLate = took < callLimit && app.waitUntilClosedByServer(call) &&
              app.record(call).longestGap >= 200ms;
  } while (wasLate);
  EXPECT_GE(took, callLimit);
}

// For example by a debugger, or by a host that saves energy.
TEST_F(CallLimit, ReplyThatArrivedWhileTheServerWasStoppedIsDelivered) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["in time"]})")});
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilReceived(1, 1));
  ::kill(server->pid(), SIGSTOP);
  app.release();
  std::this_thread::sleep_for(31s);
  ::kill(server->pid(), SIGCONT);
  EXPECT_EQ(receive().at("result"), textResult("[\n  \"in time\"\n]"));
}

TEST_F(CallLimit, RequestIsNotSentLateByAServerThatWasStopped) {
  app.script({succeedAndStopListening()});
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilClosedByServer(0));
  std::this_thread::sleep_for(1s);
  ::kill(server->pid(), SIGSTOP);
  app.listenAgain();
  std::this_thread::sleep_for(30s);
  ::kill(server->pid(), SIGCONT);
  EXPECT_EQ(receive().at("result"), errorResult(noResponse));
  EXPECT_FALSE(app.waitUntilReceived(1, 1, 2s));
}

TEST_F(CallLimit, WaitingUsesNoProcessorTime) {
  app.script({succeed(), silence()});
  callWithoutResponse();
  std::this_thread::sleep_for(2s);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(2));
}

TEST_F(CallLimit, EndsACallThatCannotConnect) {
  app.script({succeedAndStopListening()});
  callWithoutResponse();
  EXPECT_EQ(app.connectionCount(), 1U);
  server->closeInput();
  EXPECT_LT(server->waitForExit().processorTime, Seconds(3));
}

TEST_F(CallLimit, RequestThatNeverConnectedIsNotSentLater) {
  app.script({succeedAndStopListening()});
  callWithoutResponse();
  app.listenAgain();
  EXPECT_FALSE(app.waitUntilReceived(1, 1, 5s));
  const std::size_t before = app.connectionCount();
  callTool("next");
  EXPECT_EQ(app.connectionCount(), before + 2);
  EXPECT_EQ(json::parse(app.record(before + 1).received).at("tool"), "next");
}

TEST_F(CallLimit, ApplicationThatListensAgainInTimeGetsTheCall) {
  app.script({succeedAndStopListening(), succeed("[\"back\"]")});
  sendLine(toolCall(R"({"name":"x"})"));
  ASSERT_TRUE(app.waitUntilClosedByServer(0));
  std::this_thread::sleep_for(4s);
  app.listenAgain();
  EXPECT_EQ(receive().at("result"), textResult("[\n  \"back\"\n]"));
  EXPECT_EQ(app.connectionCount(), 2U);
}

}  // namespace
