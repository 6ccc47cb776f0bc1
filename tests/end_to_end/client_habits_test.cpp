#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What MCP clients do besides plain requests. tests/interop/ runs the clients themselves.
class ClientHabits : public Conversation {};

TEST_F(ClientHabits, InitializeWorksAfterARequestOfALaterRevision) {
  sendLine(R"({"jsonrpc":"2.0","id":"server-discover-probe-1","method":"server/discover","params":)"
           R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28"}}})");
  const json reply = receive();
  EXPECT_EQ(reply.at("id"), "server-discover-probe-1");
  EXPECT_EQ(reply.at("error").at("code"), -32601);
  EXPECT_EQ(reply.at("error").at("message"), "Unknown method server/discover");
  sendLine(request("initialize", "0"));
  const json initialized = receive();
  EXPECT_EQ(initialized.at("id"), 0);
  EXPECT_EQ(initialized.at("result").at("protocolVersion"), "2024-11-05");
}

TEST_F(ClientHabits, IdZeroIsRepeatedInEveryKindOfReply) {
  for (const std::string& line : {request("initialize", "0"), request("tools/list", "0"),
                                  request("ping", "0"), toolCall(R"({"name":"a"})", "0")}) {
    sendLine(line);
    EXPECT_TRUE(contains(receiveLine(), "\"id\":0")) << line;
  }
}

TEST_F(ClientHabits, MetaOfParamsIsNotForwarded) {
  sendLine(
      toolCall(R"({"_meta":{"progressToken":0},"name":"read_file","arguments":{"drive":"Work"}})"));
  receive();
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("arguments"), json({{"drive", "Work"}}));
  EXPECT_EQ(sent.size(), 4U);
}

TEST_F(ClientHabits, MetaOfArgumentsIsForwarded) {
  callTool("read_file", {{"_meta", {{"progressToken", 0}}}});
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"),
            json({{"_meta", {{"progressToken", 0}}}}));
}

TEST_F(ClientHabits, CancelledCallIsStillAnswered) {
  app.script({succeed(), replyWhenReleased(R"({"ok":true,"result":["done"]})")});
  sendLine(toolCall(R"({"name":"read_file"})", "7"));
  ASSERT_TRUE(app.waitForConnections(2));
  sendLine(R"({"jsonrpc":"2.0","method":"notifications/cancelled",)"
           R"("params":{"requestId":7,"reason":"The user has stopped it."}})");
  sendLine(request("tools/list", "8"));
  app.release();
  const json reply = receive();
  EXPECT_EQ(reply.at("id"), 7);
  EXPECT_EQ(reply.at("result"), textResult("[\n  \"done\"\n]"));
  EXPECT_EQ(receive().at("id"), 8);
  EXPECT_TRUE(hasNoFurtherReply());
}

}  // namespace
