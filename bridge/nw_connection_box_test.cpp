#include "bridge/nw_connection_box.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/scripts.h"
#include "tests/unit/as_bytes.h"

namespace {

using namespace std::chrono_literals;
using bridge::Reply;
using bridge::UptimeClock;
using State = bridge::NWConnectionBox::State;

/// A box and an application that it connects to.
class NWConnectionBox : public testing::Test {
 protected:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }  // for the application

  void open(std::string_view request = "{}") {
    const auto port = static_cast<std::uint16_t>(app.port());
    box = std::make_unique<bridge::NWConnectionBox>(port, asBytes(request));
  }

  bool sendFor(std::chrono::milliseconds time) { return box->send(UptimeClock::now() + time); }

  /// One whole exchange.
  void exchange(const ScriptedApp::Script& script, std::string_view request = "{}") {
    app.script({script});
    open(request);
    ASSERT_TRUE(sendFor(10s));
    EXPECT_EQ(box->state(), State::finished);
    reply = box->takeReply();
  }

  [[nodiscard]] std::size_t replySize() const { return reply->size(); }

  ScriptedApp app;
  std::unique_ptr<bridge::NWConnectionBox> box;
  std::optional<Reply> reply;
};

TEST_F(NWConnectionBox, SendsTheRequestUnchanged) {
  exchange(answer(), R"({"a":"b"})");
  EXPECT_EQ(app.record(0).received, R"({"a":"b"})");
}

TEST_F(NWConnectionBox, SendsAWholeLargeRequest) {
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

TEST_F(NWConnectionBox, DeliversTheReplyAndCloses) {
  exchange(::reply(R"({"ok":true,"result":"this"})"));
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(reply->document()->root().member("result")->string(), "this");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, DeliversBytesThatAreNotJson) {
  exchange(::reply("x"));
  ASSERT_TRUE(reply);
  EXPECT_FALSE(reply->isWhole());
  EXPECT_EQ(replySize(), 1U);
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, ReplyWrittenAtOnceIsOneDelivery) {
  for (const std::size_t size : {8188UZ, 8189UZ, 16384UZ, 3'000'000UZ}) {
    const std::string text = "[\"" + std::string(size, 'x') + "\"]";
    exchange(::reply(text));
    ASSERT_TRUE(reply && reply->isWhole()) << size;
    EXPECT_EQ(replySize(), text.size());
  }
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

TEST_F(NWConnectionBox, BytesAfterAWholeMessageInTheSameWriteBelongToTheReply) {
  const std::string text = "{}" + std::string(40'000, ' ') + "x";
  exchange(::reply(text));
  ASSERT_TRUE(reply);
  EXPECT_EQ(replySize(), text.size());
  EXPECT_FALSE(reply->isWhole());
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

TEST_F(NWConnectionBox, CloseWhileALargeRequestIsSentEndsItWithNone) {
  exchange(
      [](AppConnection& connection) {
        connection.readAtLeast(100'000);
        connection.reset();
      },
      std::string(20'000'000, 'x'));
  EXPECT_FALSE(reply);
}

TEST_F(NWConnectionBox, ResetEndsItWithNone) {
  exchange([](AppConnection& connection) {
    connection.readRequest();
    connection.reset();
  });
  EXPECT_FALSE(reply);
}

// The connection was accepted, so it is not retried like a refused one.
TEST_F(NWConnectionBox, ResetBeforeAnythingWasSentEndsItWithNone) {
  exchange(reset());
  EXPECT_FALSE(reply);
  EXPECT_EQ(app.connectionCount(), 1U);
}

TEST_F(NWConnectionBox, SilenceDoesNotEndIt) {
  app.script({silence()});
  open();
  EXPECT_FALSE(sendFor(500ms));
  EXPECT_EQ(box->state(), State::receiving);
  EXPECT_FALSE(box->takeReply());
  EXPECT_EQ(app.record(0).received, "{}");
  EXPECT_FALSE(app.record(0).closedByServer);
}

TEST_F(NWConnectionBox, RequestThatNobodyReadsStaysUnsent) {
  app.script({[](AppConnection& connection) { connection.waitForRelease(); }});
  open(std::string(20'000'000, 'x'));
  EXPECT_FALSE(sendFor(300ms));
  EXPECT_EQ(box->state(), State::sending);
}

TEST_F(NWConnectionBox, RefusedConnectionIsTriedAgain) {
  app.stopListening();
  open(R"({"late":1})");
  EXPECT_FALSE(sendFor(300ms));
  EXPECT_EQ(box->state(), State::connecting);
  app.listenAgain();
  ASSERT_TRUE(sendFor(10s));
  EXPECT_TRUE(box->takeReply());
  EXPECT_EQ(app.connectionCount(), 1U);
  EXPECT_EQ(app.record(0).received, R"({"late":1})");
}

TEST_F(NWConnectionBox, ContinuesAfterADeadline) {
  app.script({replyWhenReleased("[]")});
  open();
  EXPECT_FALSE(sendFor(300ms));
  app.release();
  ASSERT_TRUE(sendFor(10s));
  EXPECT_TRUE(box->takeReply());
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
}

TEST_F(NWConnectionBox, StaysFinished) {
  exchange(answer());
  EXPECT_TRUE(sendFor(0ms));
  EXPECT_EQ(app.connectionCount(), 1U);
}

/// A process that is suspended, or waits for its turn, while a reply arrives in pieces.
class SuspendedNWConnectionBox : public NWConnectionBox {
 protected:
  static constexpr auto longerThanAnySilence = 300ms;

  void openWithReplyIn(const std::vector<std::string>& pieces) {
    app.script({[this, pieces](AppConnection& connection) {
      connection.readRequest();
      for (const std::string& piece : pieces) {
        connection.waitForRelease();
        connection.write(piece);
        ++written;
      }
    }});
    open();
    EXPECT_FALSE(sendFor(200ms));
  }

  /// Has a piece written while the box does nothing.
  void releasePiece() {
    const int before = written;
    app.release();
    while (written == before) std::this_thread::sleep_for(1ms);
  }

  /// Receives the first piece. The second arrives, and the silence ends, before the box continues.
  /// Returns whether the box has finished.
  bool receiveTwoPieces() {
    releasePiece();
    EXPECT_FALSE(sendFor(0ms));
    releasePiece();
    std::this_thread::sleep_for(longerThanAnySilence);
    return sendFor(0ms);
  }

  std::atomic<int> written = 0;
};

TEST_F(SuspendedNWConnectionBox, ReceivesTheRestBeforeTheSilenceCounts) {
  openWithReplyIn({R"({"a":)", "1}"});
  ASSERT_TRUE(receiveTwoPieces());
  reply = box->takeReply();
  ASSERT_TRUE(reply && reply->isWhole());
  EXPECT_EQ(replySize(), 7U);
}

TEST_F(SuspendedNWConnectionBox, SilenceStartsAgainAfterEachPiece) {
  openWithReplyIn({R"({"a":)", "1"});
  EXPECT_FALSE(receiveTwoPieces());
}

TEST_F(SuspendedNWConnectionBox, ReceivesAReplyThatArrivedBeforeTheDeadline) {
  openWithReplyIn({"{}"});
  releasePiece();
  EXPECT_TRUE(box->send(UptimeClock::now() - 1s));
  EXPECT_TRUE(box->takeReply());
}

}  // namespace
