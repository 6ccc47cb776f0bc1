#include "bridge/nw_connection_box.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <thread>

#include <asio/executor_work_guard.hpp>

#include "tests/support/scripts.h"

namespace {

using namespace std::chrono_literals;
using bridge::Reply;

/// A box and an application on a loopback port. The test's thread runs the box.
class NWConnectionBox : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }

  std::shared_ptr<bridge::NWConnectionBox> start(std::string_view request) {
    auto box =
        std::make_shared<bridge::NWConnectionBox>(context, static_cast<std::uint16_t>(app.port()));
    json::Text text;
    text.append(request);
    box->send(std::move(text), [this, held = std::shared_ptr(completionHeld)](auto given) {
      ++completions;
      reply = std::move(given);
      if (onCompletion) onCompletion();
    });
    return box;
  }

  void runFor(std::chrono::milliseconds time) { context.run_for(time); }

  /// False if it did not come true within 10 seconds.
  template <typename Condition>
  bool runUntil(Condition condition) {
    for (int i = 0; i < 1000 && !condition(); ++i) context.run_one_for(10ms);
    return condition();
  }
  bool runUntilEnded() {
    return runUntil([this] { return completions > 0; });
  }

  /// Runs one whole exchange. `reply` and `completions` tell how it came out, also when more
  /// happens afterwards.
  void exchange(const ScriptedApp::Script& script, std::string_view request = "{}") {
    app.script({script});
    const auto box = start(request);
    ASSERT_TRUE(runUntilEnded());
    runFor(100ms);
    EXPECT_EQ(completions, 1);
  }

  [[nodiscard]] std::size_t replySize() const { return Reply::mostBytes - reply->left(); }

  asio::io_context context{1};
  asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
  ScriptedApp app;
  std::shared_ptr<int> completionHeld = std::make_shared<int>();
  int completions = 0;
  std::optional<Reply> reply;
  std::function<void()> onCompletion;
};

TEST_F(NWConnectionBox, SendsTheRequestAsItIs) {
  exchange(answer(), R"({"a":"b"})");
  EXPECT_EQ(app.record(0).received, R"({"a":"b"})");
}

TEST_F(NWConnectionBox, SendsALargeRequestWhole) {
  const std::string request = "[\"" + std::string(8'000'000, 'x') + "\"]";
  exchange(
      [](AppConnection& connection) {
        connection.readRequestSlowly(1 << 18, 1ms);
        connection.write("{}");
      },
      request);
  EXPECT_EQ(app.record(0).received.size(), request.size());
  EXPECT_TRUE(app.record(0).received == request);
}

TEST_F(NWConnectionBox, DeliversTheReply) {
  exchange(::reply(R"({"ok":true,"result":"this"})"));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->document()->root().member("result")->string(), "this");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, DeliversBytesThatAreNoMessage) {
  exchange(::reply("x"));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(replySize(), 1U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, ReplyWrittenAtOnceIsOneDelivery) {
  const std::string text = "[\"" + std::string(3'000'000, 'x') + "\"]";
  exchange(::reply(text));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(replySize(), text.size());
}

TEST_F(NWConnectionBox, ReplyInTwoPartsIsCutShort) {
  exchange(replyInTwoParts("{\"ok\":", "true}", 1s));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(replySize(), 6U);
}

TEST_F(NWConnectionBox, WholeMessageIsDeliveredWithoutWaitingForSilence) {
  exchange([](AppConnection& connection) {
    connection.readRequest();
    for (int i = 0; i < 1000; ++i) {
      connection.write(i == 0 ? "{}" : " ");
      connection.pause(5ms);
    }
  });
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_LT(replySize(), 100U);
}

TEST_F(NWConnectionBox, ReplyOfTheGreatestSizeIsWhole) {
  const std::string text = "[\"" + std::string(Reply::mostBytes - 4, 'x') + "\"]";
  ASSERT_EQ(text.size(), 4194304U);
  exchange(::reply(text));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->left(), 0U);
}

TEST_F(NWConnectionBox, LongerReplyIsCutToTheGreatestSize) {
  exchange(::reply("[\"" + std::string(Reply::mostBytes - 3, 'x') + "\"]"));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(reply->left(), 0U);
}

TEST_F(NWConnectionBox, EndlessReplyIsCutToTheGreatestSize) {
  exchange(::reply(std::string(3 * Reply::mostBytes, ' ')));
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->left(), 0U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, EndOfTheStreamEndsTheReply) {
  exchange([](AppConnection& connection) {
    connection.readRequest();
    connection.write("{\"ok\":");
    connection.halfClose();
  });
  ASSERT_TRUE(reply);
  EXPECT_EQ(replySize(), 6U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, CloseWithoutAReplyEndsItWithNone) {
  exchange(readAndHangUp());
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, CloseBeforeTheRequestWasReadEndsItWithNone) {
  exchange(hangUp());
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, ResetEndsItWithNone) {
  exchange([](AppConnection& connection) {
    connection.readRequest();
    connection.reset();
  });
  EXPECT_FALSE(reply);
}

// Such a connection was made and has failed: it is not one that is still refused.
TEST_F(NWConnectionBox, ResetBeforeAnythingWasSentEndsItWithNone) {
  app.script({reset()});
  const auto box = start("{}");
  ASSERT_TRUE(app.waitForConnections(1));
  std::this_thread::sleep_for(200ms);
  runFor(300ms);
  EXPECT_EQ(completions, 1);
  EXPECT_FALSE(reply);
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(NWConnectionBox, SilenceDoesNotEndIt) {
  app.script({silence()});
  const auto box = start("{}");
  runFor(500ms);
  EXPECT_EQ(completions, 0);
  EXPECT_EQ(app.record(0).received, "{}");
  EXPECT_FALSE(app.record(0).closedByServer);
}

TEST_F(NWConnectionBox, RefusedConnectionIsTriedAgain) {
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

TEST_F(NWConnectionBox, OneThatNeverConnectedDiesWithItsOwner) {
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

TEST_F(NWConnectionBox, ConnectedOneOutlivesItsOwner) {
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

TEST_F(NWConnectionBox, ConnectedOneThatOutlivedItsOwnerEndsWithTheConnection) {
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

TEST_F(NWConnectionBox, OwnerMayLetGoWithinTheCompletion) {
  app.script({answer()});
  auto box = start("{}");
  onCompletion = [&] { box.reset(); };
  ASSERT_TRUE(runUntilEnded());
  runFor(100ms);
  EXPECT_EQ(completions, 1);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, CompletionRunsBeforeTheConnectionIsClosed) {
  app.script({answer()});
  const auto box = start("{}");
  bool closedTooEarly = true;
  onCompletion = [&] { closedTooEarly = app.waitUntilClosedByServer(0, 200ms); };
  ASSERT_TRUE(runUntilEnded());
  EXPECT_FALSE(closedTooEarly);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, TwoShareAThreadWithoutMixing) {
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
