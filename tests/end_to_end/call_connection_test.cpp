#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// The connection of one call, and the tool result when the application ends it in some way.
class CallConnection : public Conversation {
 protected:
  static constexpr std::string_view one = R"({"ok":true,"result":[1]})";
  const json oneResult = textResult("[\n  1\n]");

  // A call that must end without waiting for its limit.
  json callEndingBeforeTheLimit() {
    const auto start = Clock::now();
    const json result = callTool("x");
    EXPECT_LT(Clock::now() - start, callLimit);
    return result;
  }
};

TEST_F(CallConnection, CarriesBareCompactJson) {
  callTool("search_drives", {{"query", "a b"}, {"list", {1, 2}}});
  ASSERT_TRUE(app.waitUntilClosedByServer(1));
  for (const std::size_t index : {0U, 1U}) {
    const std::string text = app.record(index).received;
    EXPECT_EQ(text.front(), '{');
    EXPECT_EQ(text.back(), '}');
    EXPECT_EQ(text.size(), json::parse(text).dump().size()) << text;
  }
}

TEST_F(CallConnection, IsClosedByTheServerAfterTheReply) {
  callTool("x");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(CallConnection, NeedNotBeClosedByTheApplication) {
  EXPECT_EQ(callEndingBeforeTheLimit().size(), 1U);
}

TEST_F(CallConnection, IsOpenedAfterThatOfTheProbeWasClosed) {
  app.serveOneAtATime();
  EXPECT_EQ(callEndingBeforeTheLimit().size(), 1U);
  EXPECT_EQ(app.connectionCount(), 2U);
  const auto probeClosed = app.record(0).closedByServer;
  ASSERT_TRUE(probeClosed.has_value());
  EXPECT_LE(probeClosed, app.record(1).opened);
}

TEST_F(CallConnection, PauseWithinTheReplyIsUnreadable) {
  app.script({succeed(), replyInTwoParts(R"({"ok":true,)", R"("result":[1]})", 500ms)});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
}

TEST_F(CallConnection, BytesAfterACompleteReplyAndAPauseAreNotRead) {
  app.script({succeed(), replyInTwoParts(std::string(one), "garbage", 500ms)});
  EXPECT_EQ(callTool("x"), oneResult);
  EXPECT_EQ(callTool("x").size(), 1U);
}

TEST_F(CallConnection, IncompleteReplyIsUnreadableBeforeTheLimit) {
  app.script({succeed(), reply(R"({"ok":true,)")});
  EXPECT_EQ(callEndingBeforeTheLimit(), errorResult(unreadableReply));
}

TEST_F(CallConnection, EndOfTheStreamAfterTheReplyDoesNotChangeIt) {
  app.script({succeed(), replyAndHalfClose(std::string(one))});
  EXPECT_EQ(callTool("x"), oneResult);
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(CallConnection, CloseAfterTheReplyDoesNotChangeIt) {
  app.script({succeed(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(one);
                connection.close();
              }});
  EXPECT_EQ(callTool("x"), oneResult);
}

TEST_F(CallConnection, ResetAfterTheReplyDoesNotChangeIt) {
  app.script({succeed(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(one);
                connection.pause(300ms);
                connection.reset();
              }});
  EXPECT_EQ(callTool("x"), oneResult);
  EXPECT_EQ(callText(R"({"ok":true,"result":[2]})"), "[\n  2\n]");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(CallConnection, EndOfTheStreamWithinTheReplyIsUnreadable) {
  app.script({succeed(), replyAndHalfClose(R"({"ok":true)")});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
}

TEST_F(CallConnection, EndOfTheStreamWithoutReplyIsUnreadable) {
  app.script({succeed(), replyAndHalfClose("")});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(CallConnection, CloseWithoutReplyIsUnreadableBeforeTheLimit) {
  app.script({succeed(), readAndClose()});
  EXPECT_EQ(callEndingBeforeTheLimit(), errorResult(unreadableReply));
}

TEST_F(CallConnection, CloseBeforeTheRequestIsReadIsUnreadable) {
  app.script({succeed(), closeUnread()});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
}

TEST_F(CallConnection, ResetWithoutReplyIsUnreadable) {
  app.script({succeed(), readAndReset()});
  EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
}

// The reset can arrive before the server knows that it is connected.
TEST_F(CallConnection, ResetBeforeTheRequestIsReadIsUnreadable) {
  for (std::size_t round = 1; round <= 20; ++round) {
    app.script({succeed(), resetUnread()});
    EXPECT_EQ(callTool("x"), errorResult(unreadableReply));
    EXPECT_EQ(app.connectionCount(), 2 * round);
  }
}

TEST_F(CallConnection, ResetWithinALongRequestIsUnreadable) {
  app.script({succeed(), [](AppConnection& connection) {
                connection.readAtLeast(10'000);
                connection.reset();
              }});
  const json arguments = {{"content", std::string(20'000'000, 'x')}};
  EXPECT_EQ(callTool("write_file", arguments), errorResult(unreadableReply));
}

TEST_F(CallConnection, CarriesALongRequestWholeToASlowReader) {
  app.script({succeed(), [](AppConnection& connection) {
                connection.readRequestSlowly(100'000, 2ms);
                connection.write(one);
              }});
  std::string content(8'000'000, 'y');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('A' + i % 23);
  const json arguments = {{"content", content}};
  EXPECT_EQ(callTool("write_file", arguments), oneResult);
  EXPECT_TRUE(json::parse(app.record(1).received).at("arguments") == arguments);
}

TEST_F(CallConnection, WaitsForAReply) {
  app.script({succeed(), replyAfter(5s, std::string(one))});
  EXPECT_EQ(callTool("x"), oneResult);
}

}  // namespace
