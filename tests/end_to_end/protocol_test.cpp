#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

const json initializeResult = json::parse(R"({
  "protocolVersion": "2024-11-05",
  "capabilities": {"tools": {}},
  "serverInfo": {"name": "quillmark", "version": "1.0.0"}})");

json methodError(std::string_view id, std::string_view message) {
  return {{"jsonrpc", "2.0"},
          {"id", json::parse(id)},
          {"error", {{"code", -32601}, {"message", message}}}};
}

class Initialize : public Conversation {};

TEST_F(Initialize, AnnouncesRevisionCapabilitiesAndServer) {
  say(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05"}})");
  EXPECT_EQ(hear(), json({{"jsonrpc", "2.0"}, {"id", 1}, {"result", initializeResult}}));
}

TEST_F(Initialize, StringIdComesBackAsTheSameString) {
  say(request("initialize", R"("abc")"));
  EXPECT_EQ(hear(), json({{"jsonrpc", "2.0"}, {"id", "abc"}, {"result", initializeResult}}));
}

TEST_F(Initialize, WithoutIdIsAnsweredUnderNull) {
  say(R"({"jsonrpc":"2.0","method":"initialize"})");
  EXPECT_EQ(hear(), json({{"jsonrpc", "2.0"}, {"id", nullptr}, {"result", initializeResult}}));
}

TEST_F(Initialize, RevisionOfTheClientIsNotRead) {
  say(R"({"id":1,"method":"initialize","params":{"protocolVersion":"1999-01-01"}})");
  EXPECT_EQ(hear().at("result"), initializeResult);
  say(R"({"id":1,"method":"initialize","params":"nonsense"})");
  EXPECT_EQ(hear().at("result"), initializeResult);
}

TEST_F(Initialize, IsAnsweredTheSameEachTime) {
  for (int round = 0; round < 3; ++round) {
    say(request("initialize"));
    EXPECT_EQ(hear().at("result"), initializeResult);
  }
}

TEST_F(Initialize, VersionOfJsonRpcIsNotRead) {
  say(R"({"jsonrpc":1,"id":1,"method":"initialize"})");
  EXPECT_EQ(hear().at("jsonrpc"), "2.0");
}

class ToolsList : public Conversation {};

TEST_F(ToolsList, HoldsTheToolsAndNothingElse) {
  say(request("tools/list", "2"));
  const json reply = hear();
  EXPECT_EQ(reply.size(), 3U);
  EXPECT_EQ(reply.at("jsonrpc"), "2.0");
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("result").size(), 1U);
  EXPECT_EQ(reply.at("result").at("tools").size(), 11U);
}

TEST_F(ToolsList, NeedsNoInitialize) {
  say(R"({"method":"tools\/list","params":{"cursor":"x"}})");
  const json reply = hear();
  EXPECT_EQ(reply.at("id"), nullptr);
  EXPECT_EQ(reply.at("result").at("tools").size(), 11U);
}

TEST_F(ToolsList, NeitherItNorInitializeTouchesTheApplication) {
  endpointFile.publish(70000);
  say(request("initialize"));
  say(request("tools/list"));
  hear();
  hear();
  sayGoodbye();
  EXPECT_EQ(app.connectionCount(), 0U);
}

class UnknownMethod : public Conversation {};

TEST_F(UnknownMethod, WithAnIdGetsTheMethodError) {
  say(request("ping"));
  EXPECT_EQ(hear(), methodError("1", "Unknown method ping"));
}

TEST_F(UnknownMethod, WithoutAnIdGetsNothing) {
  say(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
  say(R"({"jsonrpc":"2.0","method":"ping"})");
  say(R"({"jsonrpc":"2.0"})");
  say("{}");
  EXPECT_TRUE(staysSilent());
}

TEST_F(UnknownMethod, NotificationWithAnIdIsAMethodLikeAnyOther) {
  say(request("notifications/initialized"));
  EXPECT_EQ(hear(), methodError("1", "Unknown method notifications/initialized"));
}

TEST_F(UnknownMethod, MethodThatIsNoStringLeavesThePrefixAlone) {
  for (const char* method : {"5", "null", "true", R"(["initialize"])", R"({"a":"initialize"})"}) {
    say(R"({"id":1,"method":)" + std::string(method) + "}");
    EXPECT_EQ(hear(), methodError("1", "Unknown method ")) << method;
  }
}

TEST_F(UnknownMethod, MissingOrEmptyMethodLeavesThePrefixAlone) {
  say(R"({"id":1})");
  EXPECT_EQ(hear(), methodError("1", "Unknown method "));
  say(R"({"id":1,"method":""})");
  EXPECT_EQ(hear(), methodError("1", "Unknown method "));
}

TEST_F(UnknownMethod, ResponseFromTheClientIsOne) {
  say(R"({"jsonrpc":"2.0","id":9,"result":{}})");
  EXPECT_EQ(hear(), methodError("9", "Unknown method "));
}

TEST_F(UnknownMethod, LetterCaseBlanksAndPrefixesMatter) {
  for (const char* method : {"Initialize", "INITIALIZE", "initialize ", " initialize", "tools/List",
                             "tools", "tools/", "tools/calls", "initialize\\u0000"}) {
    say(request(method));
    const json reply = hear();
    EXPECT_EQ(reply.at("error").at("code"), -32601) << method;
    EXPECT_FALSE(reply.contains("result"));
  }
}

TEST_F(UnknownMethod, NullIsAnIdThatIsPresent) {
  say(request("ping", "null"));
  EXPECT_EQ(hear(), methodError("null", "Unknown method ping"));
}

TEST_F(UnknownMethod, NameComesBackAsItCame) {
  say(request(R"(a \"quoted\"\nname\t\u0001 of \u00e9t\u00e9 \\ \/)"));
  EXPECT_EQ(hear(),
            methodError("1", "Unknown method a \"quoted\"\nname\t\x01 of \u00e9t\u00e9 \\ /"));
}

TEST_F(UnknownMethod, LongNameComesBackWhole) {
  const std::string name(1'000'000, 'n');
  say(request(name));
  EXPECT_TRUE(hear() == methodError("1", "Unknown method " + name));
}

TEST_F(UnknownMethod, NeverStopsTheLoop) {
  for (const char* method : {"shutdown", "exit", "quit", "close"}) say(request(method));
  for (int i = 0; i < 4; ++i) hear();
  EXPECT_TRUE(staysSilent());
}

class RequestId : public Conversation {};

TEST_F(RequestId, OfEveryTypeComesBackUnchanged) {
  for (const char* id : {"1", "-7", "1.5", R"("abc")", R"("")", "null", "true", "false", "[]",
                         R"([1,"two",null])", "{}", R"({"a":{"b":[1,2]}})", R"("\u0007\n")"}) {
    say(request("ping", id));
    EXPECT_EQ(hear().at("id"), json::parse(id)) << id;
  }
}

TEST_F(RequestId, IsRepeatedInEveryKindOfReply) {
  const std::string id = R"({"call":[1,"x/y"]})";
  for (const std::string& line : {request("initialize", id), request("tools/list", id),
                                  request("ping", id), toolCall(R"({"name":"a"})", id)}) {
    say(line);
    EXPECT_EQ(hear().at("id"), json::parse(id));
  }
}

}  // namespace
