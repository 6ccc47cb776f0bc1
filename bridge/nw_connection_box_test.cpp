#include "bridge/nw_connection_box.h"

#include <pthread.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "tests/unit/connection_box_test.h"

namespace {

using namespace std::chrono_literals;

using NWConnectionBox = NWConnectionBoxTest;

TEST_F(NWConnectionBox, SendsTheRequestUnchanged) {
  exchange(succeed(), R"({"a":"b"})");
  EXPECT_EQ(app.record(0).received, R"({"a":"b"})");
}

TEST_F(NWConnectionBox, WaitsOnAfterASignal) {
  struct sigaction ignored{};
  ignored.sa_handler = [](int) {};
  struct sigaction before{};
  ::sigaction(SIGUSR1, &ignored, &before);
  app.script({replyWhenReleased("{}")});
  open();
  const auto deadline = bridge::UptimeClock::now() + 400ms;
  std::thread sender([thread = ::pthread_self()] {
    for (int i = 0; i < 3; ++i) {
      std::this_thread::sleep_for(100ms);
      ::pthread_kill(thread, SIGUSR1);
    }
  });
  EXPECT_FALSE(box->send(deadline));
  EXPECT_GE(bridge::UptimeClock::now(), deadline);
  sender.join();
  ::sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(NWConnectionBox, SendsALargeRequestWhole) {
  const std::string request = "[\"" + std::string(8'000'000, 'x') + "\"]";
  exchange(
      [](AppConnection& connection) {
        connection.readRequestSlowly(1 << 18, 1ms);
        connection.write("{}");
      },
      request);
  EXPECT_TRUE(app.record(0).received == request);
}

TEST_F(NWConnectionBox, DeliversTheReplyAndCloses) {
  exchange(::reply(R"({"ok":true,"result":"this"})"));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->document()->root().member("result")->string(), "this");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, CloseWithoutReplyGivesNone) {
  exchange(readAndClose());
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, CloseBeforeTheRequestWasReadGivesNone) {
  exchange(closeUnread());
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, ResetGivesNone) {
  exchange(readAndReset());
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, ResetWithinALargeRequestGivesNone) {
  exchange(
      [](AppConnection& connection) {
        connection.readAtLeast(100'000);
        connection.reset();
      },
      std::string(20'000'000, 'x'));
  EXPECT_FALSE(reply);
}

// The connection was accepted, so the box does not try again as after a refusal.
TEST_F(NWConnectionBox, ResetBeforeAnythingWasSentGivesNone) {
  exchange(resetUnread());
  EXPECT_FALSE(reply);
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(NWConnectionBox, WaitsForTheReplyUntilTheDeadline) {
  app.script({silence()});
  openAndDriveTo(State::receiving);
  EXPECT_FALSE(sendFor(500ms));
  EXPECT_EQ(box->state(), State::receiving);
  EXPECT_FALSE(box->takeReply());
  EXPECT_EQ(app.record(0).received, "{}");
  EXPECT_FALSE(app.record(0).closedByServer);
}

TEST_F(NWConnectionBox, WaitsForTheApplicationToReadUntilTheDeadline) {
  app.script({[](AppConnection& connection) { connection.waitForRelease(); }});
  openAndDriveTo(State::sending, std::string(20'000'000, 'x'));
  EXPECT_FALSE(sendFor(300ms));
  EXPECT_EQ(box->state(), State::sending);
}

TEST_F(NWConnectionBox, ContinuesAfterADeadline) {
  app.script({replyWhenReleased("[]")});
  open();
  EXPECT_FALSE(sendFor(300ms));
  app.release();
  ASSERT_TRUE(sendFor(ScriptedApp::generous));
  EXPECT_TRUE(box->takeReply());
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, StaysFinished) {
  exchange(succeed());
  EXPECT_TRUE(sendFor(0ms));
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(NWConnectionBox, TriesAgainAfterARefusal) {
  app.stopListening();
  open(R"({"late":1})");
  EXPECT_FALSE(sendFor(300ms));
  EXPECT_EQ(box->state(), State::connecting);
  app.listenAgain();
  ASSERT_TRUE(sendFor(ScriptedApp::generous));
  EXPECT_TRUE(box->takeReply());
  EXPECT_EQ(app.connectionCount(), 1U);
  EXPECT_EQ(app.record(0).received, R"({"late":1})");
}

// The application starts to listen after the first attempt, and the second one reaches it. An
// attempt can be late on a busy machine, even the first one, but that is rare.
TEST_F(NWConnectionBox, TriesAgainAfter20Milliseconds) {
  int early = 0;
  int punctual = 0;
  for (std::size_t round = 0; round < 40; ++round) {
    app.stopListening();
    open();
    auto start = ConnectionRecord::Clock::time_point::min();
    std::thread sender([&] {
      start = ConnectionRecord::Clock::now();
      EXPECT_TRUE(sendFor(ScriptedApp::generous));
    });
    std::this_thread::sleep_for(5ms);
    app.listenAgain();
    sender.join();
    const auto pause = app.record(round).opened - start;
    if (pause < 20ms) ++early;
    if (pause >= 20ms && pause < 30ms) ++punctual;
  }
  EXPECT_GT(punctual, early);
}

}  // namespace
