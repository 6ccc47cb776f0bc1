#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bridge/nw_connection_box.h"
#include "tests/unit/running_box.h"

namespace {

using namespace std::chrono_literals;

class NWConnectionBoxLife : public RunningBox {};

TEST_F(NWConnectionBoxLife, SilenceDoesNotEndIt) {
  app.script({silence()});
  const auto box = start("{}");
  runFor(500ms);
  EXPECT_EQ(completions, 0);
  EXPECT_EQ(app.record(0).received, "{}");
  EXPECT_FALSE(app.record(0).closedByServer);
}

TEST_F(NWConnectionBoxLife, RefusedConnectionIsTriedAgain) {
  app.stopListening();
  const auto box = start(R"({"late":1})");
  runFor(300ms);
  EXPECT_EQ(completions, 0);
  app.listenAgain();
  ASSERT_TRUE(runUntilEnded());
  EXPECT_TRUE(reply);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(app.connectionCount(), 1U);
  EXPECT_EQ(app.record(0).received, R"({"late":1})");
}

TEST_F(NWConnectionBoxLife, OneThatNeverConnectedDiesWithItsOwner) {
  app.stopListening();
  const std::weak_ptr<int> completion = completionHeld;
  auto box = start("{}");
  completionHeld.reset();
  runFor(100ms);
  EXPECT_FALSE(completion.expired());
  const std::weak_ptr<bridge::NWConnectionBox> gone = box;
  box.reset();
  runFor(100ms);
  EXPECT_TRUE(gone.expired());
  EXPECT_TRUE(completion.expired());
  app.listenAgain();
  runFor(300ms);
  EXPECT_EQ(app.connectionCount(), 0U);
  EXPECT_EQ(completions, 0);
}

TEST_F(NWConnectionBoxLife, ConnectedOneOutlivesItsOwner) {
  app.script({replyWhenReleased("[]")});
  auto box = start("{}");
  ASSERT_TRUE(runUntil([&] { return app.waitUntilReceived(0, 2, 0ms); }));
  const std::weak_ptr<bridge::NWConnectionBox> abandoned = box;
  box.reset();
  runFor(100ms);
  EXPECT_FALSE(abandoned.expired());
  EXPECT_FALSE(app.record(0).closedByServer);
  app.release();
  ASSERT_TRUE(runUntilEnded());
  EXPECT_TRUE(reply);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_TRUE(runUntil([&] { return abandoned.expired(); }));
}

TEST_F(NWConnectionBoxLife, ConnectedOneThatOutlivedItsOwnerEndsWithTheConnection) {
  app.script({[](AppConnection& connection) {
    connection.readRequest();
    connection.waitForRelease();
    connection.hangUp();
  }});
  auto box = start("{}");
  ASSERT_TRUE(runUntil([&] { return app.waitUntilReceived(0, 2, 0ms); }));
  const std::weak_ptr<bridge::NWConnectionBox> abandoned = box;
  box.reset();
  app.release();
  ASSERT_TRUE(runUntilEnded());
  EXPECT_FALSE(reply);
  EXPECT_TRUE(runUntil([&] { return abandoned.expired(); }));
}

TEST_F(NWConnectionBoxLife, OwnerMayLetGoWithinTheCompletion) {
  app.script({answer()});
  auto box = start("{}");
  onCompletion = [&] { box.reset(); };
  ASSERT_TRUE(runUntilEnded());
  runFor(100ms);
  EXPECT_EQ(completions, 1);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBoxLife, CompletionRunsBeforeTheConnectionIsClosed) {
  app.script({answer()});
  const auto box = start("{}");
  bool closedTooEarly = true;
  onCompletion = [&] { closedTooEarly = app.waitUntilClosedByServer(0, 200ms); };
  ASSERT_TRUE(runUntilEnded());
  EXPECT_FALSE(closedTooEarly);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

// A reply in pieces to a process that is stopped between them, or has to wait for its turn.
class NWConnectionBoxNotRun : public NWConnectionBoxLife {
 protected:
  static constexpr auto longerThanAnySilence = 300ms;

  std::shared_ptr<bridge::NWConnectionBox> startWithReplyIn(
      const std::vector<std::string>& pieces) {
    app.script({[this, pieces](AppConnection& connection) {
      connection.readRequest();
      for (const std::string& piece : pieces) {
        connection.waitForRelease();
        connection.write(piece);
        ++written;
      }
    }});
    auto box = start("{}");
    EXPECT_TRUE(runUntil([&] { return app.waitUntilReceived(0, 2, 0ms); }));
    return box;
  }

  // Has a piece written, but runs nothing.
  void releasePiece() {
    const int before = written;
    app.release();
    while (written == before) std::this_thread::sleep_for(1ms);
  }

  // Has the first piece received, and then runs nothing until the second is there and any
  // silence is over.
  void receiveAPieceAndThenDoNotRun() {
    releasePiece();
    context.poll();
    releasePiece();
    std::this_thread::sleep_for(longerThanAnySilence);
    context.poll();
  }

  std::atomic<int> written = 0;
};

TEST_F(NWConnectionBoxNotRun, SilenceAndTheRestAtTheSameTimeAreOneDelivery) {
  const auto box = startWithReplyIn({R"({"a":)", "1}"});
  receiveAPieceAndThenDoNotRun();
  ASSERT_EQ(completions, 1);
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(replySize(), 7U);
}

TEST_F(NWConnectionBoxNotRun, WhatComesBehindAWholeMessageAtOnceIsPartOfTheReply) {
  const std::string text = "{}" + std::string(40'000, ' ') + "x";
  const auto box = startWithReplyIn({text});
  releasePiece();
  ASSERT_TRUE(runUntilEnded());
  ASSERT_TRUE(reply);
  EXPECT_EQ(replySize(), text.size());
  EXPECT_FALSE(reply->isWhole());
}

TEST_F(NWConnectionBoxNotRun, SilenceBeforeAPieceIsNotTheSilenceAfterIt) {
  const auto box = startWithReplyIn({R"({"a":)", "1"});
  receiveAPieceAndThenDoNotRun();
  EXPECT_EQ(completions, 0);
}

TEST_F(NWConnectionBoxLife, TwoShareAThreadWithoutMixing) {
  app.script({replyWhenReleased(R"({"to":"slow"})"), ::reply(R"({"to":"quick"})")});
  const auto slow = start(R"(["slow"])");
  ASSERT_TRUE(runUntil([&] { return app.waitUntilReceived(0, 8, 0ms); }));
  const auto quick = start(R"(["quick"])");
  ASSERT_TRUE(runUntilEnded());
  EXPECT_EQ(reply->document()->root().member("to")->string(), "quick");
  EXPECT_EQ(app.record(0).received, R"(["slow"])");
  EXPECT_EQ(app.record(1).received, R"(["quick"])");
  app.release();
  ASSERT_TRUE(runUntil([this] { return completions == 2; }));
  EXPECT_EQ(reply->document()->root().member("to")->string(), "slow");
}

}  // namespace
