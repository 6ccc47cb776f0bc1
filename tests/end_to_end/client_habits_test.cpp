#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What clients in use do beside plain requests; tests/interop/ has the clients themselves.
class ClientHabits : public Conversation {};

TEST_F(ClientHabits, ProbingForALaterRevisionLeavesInitializeUnharmed) {
  say(R"({"jsonrpc":"2.0","id":"server-discover-probe-1","method":"server/discover","params":)"
      R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28"}}})");
  const json refused = hear();
  EXPECT_EQ(refused.at("id"), "server-discover-probe-1");
  EXPECT_EQ(refused.at("error").at("code"), -32601);
  EXPECT_EQ(refused.at("error").at("message"), "Unknown method server/discover");
  say(request("initialize", "0"));
  const json welcomed = hear();
  EXPECT_EQ(welcomed.at("id"), 0);
  EXPECT_EQ(welcomed.at("result").at("protocolVersion"), "2024-11-05");
}

TEST_F(ClientHabits, IdZeroIsAnIdInEveryKindOfReply) {
  for (const std::string& line : {request("initialize", "0"), request("tools/list", "0"),
                                  request("ping", "0"), toolCall(R"({"name":"a"})", "0")}) {
    say(line);
    EXPECT_TRUE(has(hearLine(), "\"id\":0")) << line;
  }
}

TEST_F(ClientHabits, MetaBesideTheArgumentsStaysHere) {
  say(toolCall(R"({"_meta":{"progressToken":0},"name":"read_file","arguments":{"drive":"Work"}})"));
  hear();
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("arguments"), json({{"drive", "Work"}}));
  EXPECT_EQ(sent.size(), 4U);
}

TEST_F(ClientHabits, MetaInsideTheArgumentsIsAnArgument) {
  callTool("read_file", {{"_meta", {{"progressToken", 0}}}});
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"),
            json({{"_meta", {{"progressToken", 0}}}}));
}

TEST_F(ClientHabits, CancellingACallIsNotAnsweredAndTheCallIs) {
  app.script({answer(), replyWhenReleased(R"({"ok":true,"result":["done"]})")});
  say(toolCall(R"({"name":"read_file"})", "7"));
  ASSERT_TRUE(app.waitForConnections(2));
  say(R"({"jsonrpc":"2.0","method":"notifications/cancelled",)"
      R"("params":{"requestId":7,"reason":"The user has stopped it."}})");
  say(request("tools/list", "8"));
  app.release();
  const json answered = hear();
  EXPECT_EQ(answered.at("id"), 7);
  EXPECT_EQ(answered.at("result"), textResult("[\n  \"done\"\n]"));
  EXPECT_EQ(hear().at("id"), 8);
  EXPECT_TRUE(staysSilent());
}

}  // namespace
