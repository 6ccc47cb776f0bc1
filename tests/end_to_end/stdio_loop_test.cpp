#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

class StdioLoop : public Conversation {};

TEST_F(StdioLoop, EndOfInputAtOnceGivesNoOutputAndStatusZero) {
  sayGoodbye();
}

TEST_F(StdioLoop, EndOfInputAfterARequestGivesStatusZero) {
  say(request("initialize"));
  hear();
  sayGoodbye();
}

TEST_F(StdioLoop, CarriageReturnAndLineFeedEndALine) {
  server->send(request("ping", "1") + "\r\n" + request("ping", "2") + "\n");
  EXPECT_EQ(hear().at("id"), 1);
  EXPECT_EQ(hear().at("id"), 2);
}

TEST_F(StdioLoop, LineOfCarriageReturnAloneIsEmpty) {
  server->send("\r\n\r\n");
  EXPECT_TRUE(staysSilent());
}

TEST_F(StdioLoop, CarriageReturnInsideALineDoesNotEndIt) {
  server->send("{\"id\":1,\r\"method\":\"ping\"}\r\r\n");
  EXPECT_EQ(hear().at("error").at("message"), "Unknown method ping");
}

TEST_F(StdioLoop, LastLineWithoutLineFeedIsAnswered) {
  server->send(request("ping", "1"));
  server->closeInput();
  EXPECT_EQ(hear().at("id"), 1);
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

TEST_F(StdioLoop, LastLineWithoutLineFeedThatIsNoJsonIsDropped) {
  server->send("{\"id\":1,");
  sayGoodbye();
}

TEST_F(StdioLoop, EmptyLinesProduceNoOutput) {
  server->send("\n\n" + request("ping", "1") + "\n\n\n" + request("ping", "2") + "\n\n");
  EXPECT_EQ(hear().at("id"), 1);
  EXPECT_EQ(hear().at("id"), 2);
  sayGoodbye();
}

TEST_F(StdioLoop, LineOfBlanksIsDropped) {
  say("   \t ");
  EXPECT_TRUE(staysSilent());
}

TEST_F(StdioLoop, BlanksAroundARequestAreAllowed) {
  say(" \t" + request("ping", "1") + "  ");
  EXPECT_EQ(hear().at("id"), 1);
}

TEST_F(StdioLoop, PlainWordsAreDroppedAndTheNextRequestIsAnswered) {
  say("hello, server");
  say(request("ping", "2"));
  EXPECT_EQ(hear().at("id"), 2);
  sayGoodbye();
}

TEST_F(StdioLoop, BatchIsDropped) {
  say("[" + request("initialize", "1") + "," + request("ping", "2") + "]");
  say("[]");
  EXPECT_TRUE(staysSilent());
}

TEST_F(StdioLoop, BareScalarsAreDropped) {
  for (const char* line : {"1", "-1.5e3", "\"text\"", "null", "true", "false"}) say(line);
  EXPECT_TRUE(staysSilent());
}

TEST_F(StdioLoop, ReplyWithManyLinesOfTextIsOneLine) {
  app.script({answer(), succeed(R"({"a":1,"b":"x\ny"})")});
  say(toolCall(R"({"name":"read_file"})"));
  const std::string line = hearLine();
  EXPECT_TRUE(has(line, R"({\n  \"a\" : 1,\n  \"b\" : \"x\\ny\"\n})"));
  EXPECT_EQ(json::parse(line).at("id"), 1);
  EXPECT_TRUE(staysSilent());
}

TEST_F(StdioLoop, SlashIsEscapedOnTheWire) {
  say(request("a/b"));
  EXPECT_TRUE(has(hearLine(), R"("Unknown method a\/b")"));
}

TEST_F(StdioLoop, RepliesAreCompact) {
  say(R"({ "id" : [ 1 , { "a" : "b c" } ] , "method" : "ping" })");
  const std::string line = hearLine();
  EXPECT_TRUE(has(line, R"("id":[1,{"a":"b c"}])"));
  EXPECT_TRUE(has(line, R"("jsonrpc":"2.0")"));
  EXPECT_EQ(line.size(), json::parse(line).dump().size());
}

TEST_F(StdioLoop, LongCallHoldsBackLaterReplies) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["done"]})")});
  say(toolCall(R"({"name":"read_file"})", "1"));
  say(request("tools/list", "2"));
  ASSERT_TRUE(app.waitForConnections(2));
  EXPECT_EQ(server->readLine(700ms), std::nullopt);
  app.release();
  EXPECT_EQ(hear().at("id"), 1);
  EXPECT_EQ(hear().at("id"), 2);
}

TEST_F(StdioLoop, RepliesComeInTheOrderOfTheRequests) {
  std::string lines;
  for (int id = 0; id < 300; ++id) {
    lines += id % 50 == 7 ? toolCall(R"({"name":"drive_status"})", std::to_string(id))
                          : request(id % 2 == 0 ? "ping" : "initialize", std::to_string(id));
    lines += "\n";
  }
  server->send(lines);
  for (int id = 0; id < 300; ++id) ASSERT_EQ(hear().at("id"), id);
}

TEST_F(StdioLoop, EndOfInputDuringACallStillGetsItsReply) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["late"]})")});
  say(toolCall(R"({"name":"read_file"})", "5"));
  ASSERT_TRUE(app.waitForConnections(2));
  server->closeInput();
  app.release();
  EXPECT_EQ(hear().at("id"), 5);
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

TEST_F(StdioLoop, NothingIsWrittenToDisk) {
  callTool("drive_status");
  namespace fs = std::filesystem;
  std::size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(home.home())) {
    if (!entry.is_directory()) ++files;
  }
  EXPECT_EQ(files, 1U) << "the endpoint file alone";
}

}  // namespace
