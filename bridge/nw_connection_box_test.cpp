#include "bridge/nw_connection_box.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/unit/running_box.h"

namespace {

using namespace std::chrono_literals;
using bridge::Reply;

class NWConnectionBox : public RunningBox {};

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

}  // namespace
