#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// What the program reads, line by line, and what it writes.
class LinesInAndOut : public Conversation {};

TEST_F(LinesInAndOut, EndOfInputAtOnceGivesStatusZero) {
  expectCleanExit();
}

TEST_F(LinesInAndOut, EndOfInputAfterARequestGivesStatusZero) {
  sendLine(request("initialize"));
  receive();
  expectCleanExit();
}

TEST_F(LinesInAndOut, CarriageReturnAndLineFeedEndALine) {
  server->send(request("ping", "1") + "\r\n" + request("ping", "2") + "\n");
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_EQ(receive().at("id"), 2);
}

TEST_F(LinesInAndOut, LineOfACarriageReturnIsEmpty) {
  server->send("\r\n\r\n");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(LinesInAndOut, CarriageReturnInsideALineDoesNotEndIt) {
  server->send("{\"id\":1,\r\"method\":\"ping\"}\r\r\n");
  EXPECT_EQ(receive().at("error").at("message"), "Unknown method ping");
}

TEST_F(LinesInAndOut, LastLineWithoutLineFeedIsAnswered) {
  server->send(request("ping", "1"));
  server->closeInput();
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

TEST_F(LinesInAndOut, InvalidLastLineWithoutLineFeedIsDropped) {
  server->send("{\"id\":1,");
  expectCleanExit();
}

TEST_F(LinesInAndOut, EmptyLinesGetNoReply) {
  server->send("\n\n" + request("ping", "1") + "\n\n\n" + request("ping", "2") + "\n\n");
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_EQ(receive().at("id"), 2);
  expectCleanExit();
}

TEST_F(LinesInAndOut, LineOfWhiteSpaceIsDropped) {
  sendLine("   \t ");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(LinesInAndOut, WhiteSpaceAroundARequestIsAllowed) {
  sendLine(" \t" + request("ping", "1") + "  ");
  EXPECT_EQ(receive().at("id"), 1);
}

TEST_F(LinesInAndOut, TextThatIsNotJsonIsDropped) {
  sendLine("hello, server");
  sendLine(request("ping", "2"));
  EXPECT_EQ(receive().at("id"), 2);
  expectCleanExit();
}

TEST_F(LinesInAndOut, BatchIsDropped) {
  sendLine("[" + request("initialize", "1") + "," + request("ping", "2") + "]");
  sendLine("[]");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(LinesInAndOut, ScalarsAreDropped) {
  for (const char* line : {"1", "-1.5e3", "\"text\"", "null", "true", "false"}) sendLine(line);
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(LinesInAndOut, ReplyWithManyLinesOfTextIsOneLine) {
  app.script({succeed(), succeed(R"({"a":1,"b":"x\ny"})")});
  sendLine(toolCall(R"({"name":"read_file"})"));
  const std::string line = receiveLine();
  EXPECT_TRUE(contains(line, R"({\n  \"a\" : 1,\n  \"b\" : \"x\\ny\"\n})"));
  EXPECT_EQ(json::parse(line).at("id"), 1);
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(LinesInAndOut, SlashesAreEscaped) {
  sendLine(request("a/b"));
  EXPECT_TRUE(contains(receiveLine(), R"("Unknown method a\/b")"));
}

TEST_F(LinesInAndOut, RepliesAreCompact) {
  sendLine(R"({ "id" : [ 1 , { "a" : "b c" } ] , "method" : "ping" })");
  const std::string line = receiveLine();
  EXPECT_TRUE(contains(line, R"("id":[1,{"a":"b c"}])"));
  EXPECT_TRUE(contains(line, R"("jsonrpc":"2.0")"));
  EXPECT_EQ(line.size(), json::parse(line).dump().size());
}

TEST_F(LinesInAndOut, RepliesWaitForAnEarlierCall) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["done"]})")});
  sendLine(toolCall(R"({"name":"read_file"})", "1"));
  sendLine(request("tools/list", "2"));
  ASSERT_TRUE(app.waitForConnections(2));
  EXPECT_EQ(server->readLine(700ms), std::nullopt);
  app.release();
  EXPECT_EQ(receive().at("id"), 1);
  EXPECT_EQ(receive().at("id"), 2);
}

TEST_F(LinesInAndOut, RepliesComeInTheOrderOfTheRequests) {
  std::string lines;
  for (int id = 0; id < 300; ++id) {
    lines += id % 50 == 7 ? toolCall(R"({"name":"drive_status"})", std::to_string(id))
                          : request(id % 2 == 0 ? "ping" : "initialize", std::to_string(id));
    lines += "\n";
  }
  server->send(lines);
  for (int id = 0; id < 300; ++id) ASSERT_EQ(receive().at("id"), id);
}

TEST_F(LinesInAndOut, CallIsAnsweredAfterTheEndOfInput) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["late"]})")});
  sendLine(toolCall(R"({"name":"read_file"})", "5"));
  ASSERT_TRUE(app.waitForConnections(2));
  server->closeInput();
  app.release();
  EXPECT_EQ(receive().at("id"), 5);
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

TEST_F(LinesInAndOut, NothingIsWrittenToDisk) {
  callTool("drive_status");
  namespace fs = std::filesystem;
  std::size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(home.home())) {
    if (!entry.is_directory()) ++files;
  }
  EXPECT_EQ(files, 1U) << "only the endpoint file";
}

}  // namespace
