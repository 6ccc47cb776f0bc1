#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// One request and its reply on a connection.
class Exchange : public Conversation {
 protected:
  Seconds timeOf(const std::function<void()>& action) {
    const auto start = Clock::now();
    action();
    return Clock::now() - start;
  }
};

TEST_F(Exchange, RequestIsBareCompactJson) {
  callTool("search_drives", {{"query", "a b"}, {"list", {1, 2}}});
  ASSERT_TRUE(app.waitUntilClosedByServer(1));
  for (const std::size_t index : {0U, 1U}) {
    const std::string text = app.record(index).received;
    EXPECT_EQ(text.front(), '{');
    EXPECT_EQ(text.back(), '}');
    EXPECT_EQ(text.size(), json::parse(text).dump().size()) << text;
  }
}

TEST_F(Exchange, ConnectionIsClosedByTheServerAfterTheReply) {
  callTool("x");
  EXPECT_TRUE(app.waitUntilClosedByServer(0));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(Exchange, CompleteReplyIsDeliveredAtOnceThoughTheConnectionStaysOpen) {
  EXPECT_LT(timeOf([&] { callTool("x"); }), Seconds(2));
}

TEST_F(Exchange, ApplicationThatServesOneConnectionAtATimeIsServed) {
  app.serveOneAtATime();
  EXPECT_LT(timeOf([&] { callTool("x"); }), Seconds(3));
  EXPECT_EQ(app.connectionCount(), 2U);
  const auto probeClosed = app.record(0).closedByServer;
  ASSERT_TRUE(probeClosed.has_value());
  EXPECT_LE(probeClosed, app.record(1).opened);
}

TEST_F(Exchange, ReplyInTwoPartsWithAPauseIsUnreadable) {
  app.script({answer(), replyInTwoParts(R"({"ok":true,)", R"("result":[1]})", 500ms)});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
}

TEST_F(Exchange, WhatComesAfterACompleteReplyAndAPauseIsNotRead) {
  app.script({answer(), replyInTwoParts(R"({"ok":true,"result":[1]})", "garbage", 500ms)});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
  EXPECT_EQ(callTool("x").size(), 1U);
}

TEST_F(Exchange, UnfinishedReplyIsGivenUpLongBeforeTheDeadline) {
  app.script({answer(), reply(R"({"ok":true,)")});
  EXPECT_LT(timeOf([&] { EXPECT_EQ(callTool("x"), failure(unreadableReply)); }), Seconds(2));
}

TEST_F(Exchange, ReplyIsWholeWhenTheApplicationThenEndsItsStream) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(R"({"ok":true,"result":[1]})");
                connection.halfClose();
              }});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(Exchange, ReplyIsWholeWhenTheApplicationThenCloses) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(R"({"ok":true,"result":[1]})");
                connection.hangUp();
              }});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
}

TEST_F(Exchange, BreakAfterTheReplyHarmsNothing) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(R"({"ok":true,"result":[1]})");
                connection.pause(300ms);
                connection.reset();
              }});
  EXPECT_EQ(callTool("x"), textResult("[\n  1\n]"));
  app.script({answer(), succeed("[2]")});
  EXPECT_EQ(callTool("x"), textResult("[\n  2\n]"));
  EXPECT_TRUE(staysSilent());
}

TEST_F(Exchange, UnfinishedReplyBeforeTheEndOfTheStreamIsUnreadable) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.write(R"({"ok":true)");
                connection.halfClose();
              }});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
}

TEST_F(Exchange, ApplicationThatReadsAndHangsUpGivesAnUnreadableReplyAtOnce) {
  app.script({answer(), readAndHangUp()});
  EXPECT_LT(timeOf([&] { EXPECT_EQ(callTool("x"), failure(unreadableReply)); }), Seconds(2));
}

TEST_F(Exchange, ApplicationThatHangsUpUnreadGivesAnUnreadableReply) {
  app.script({answer(), hangUp()});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
}

TEST_F(Exchange, ApplicationThatReadsAndResetsGivesAnUnreadableReply) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.reset();
              }});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
}

// The break may come before the server has noticed that it is connected at all.
TEST_F(Exchange, ApplicationThatResetsUnreadGivesAnUnreadableReply) {
  for (int round = 0; round < 20; ++round) {
    app.script({answer(), reset()});
    EXPECT_EQ(callTool("x"), failure(unreadableReply));
    EXPECT_EQ(app.connectionCount(), 2U * static_cast<unsigned>(round + 1));
  }
}

TEST_F(Exchange, EndOfStreamWithoutAReplyIsUnreadableAndClosesTheConnection) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.halfClose();
              }});
  EXPECT_EQ(callTool("x"), failure(unreadableReply));
  EXPECT_TRUE(app.waitUntilClosedByServer(1));
}

TEST_F(Exchange, ResetWhileALongRequestIsBeingSentGivesAnUnreadableReply) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readAtLeast(10'000);
                connection.reset();
              }});
  std::string content;
  content.resize(20'000'000, 'x');
  const json arguments = {{"content", content}};
  EXPECT_EQ(callTool("write_file", arguments, 30s), failure(unreadableReply));
}

TEST_F(Exchange, SlowlyReadRequestArrivesWhole) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequestSlowly(20'000, 2ms);
                connection.write(R"({"ok":true,"result":["got it"]})");
              }});
  std::string content(8'000'000, 'y');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('A' + i % 23);
  const json arguments = {{"content", content}};
  EXPECT_EQ(callTool("write_file", arguments, 28s), textResult("[\n  \"got it\"\n]"));
  EXPECT_TRUE(json::parse(app.record(1).received).at("arguments") == arguments);
}

TEST_F(Exchange, ReplyAfterAWhileIsDelivered) {
  app.script({answer(), [](AppConnection& connection) {
                connection.readRequest();
                connection.pause(5s);
                connection.write(R"({"ok":true,"result":[5]})");
              }});
  EXPECT_EQ(callTool("x"), textResult("[\n  5\n]"));
}

}  // namespace
