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
  sendLine(
      R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05"}})");
  EXPECT_EQ(receive(), json({{"jsonrpc", "2.0"}, {"id", 1}, {"result", initializeResult}}));
}

TEST_F(Initialize, RepeatsAStringId) {
  sendLine(request("initialize", R"("abc")"));
  EXPECT_EQ(receive(), json({{"jsonrpc", "2.0"}, {"id", "abc"}, {"result", initializeResult}}));
}

TEST_F(Initialize, WithoutIdIsAnsweredWithIdNull) {
  sendLine(R"({"jsonrpc":"2.0","method":"initialize"})");
  EXPECT_EQ(receive(), json({{"jsonrpc", "2.0"}, {"id", nullptr}, {"result", initializeResult}}));
}

TEST_F(Initialize, IgnoresTheRevisionOfTheClient) {
  sendLine(R"({"id":1,"method":"initialize","params":{"protocolVersion":"1999-01-01"}})");
  EXPECT_EQ(receive().at("result"), initializeResult);
  sendLine(R"({"id":1,"method":"initialize","params":"nonsense"})");
  EXPECT_EQ(receive().at("result"), initializeResult);
}

TEST_F(Initialize, IsAnsweredTheSameEachTime) {
  for (int round = 0; round < 3; ++round) {
    sendLine(request("initialize"));
    EXPECT_EQ(receive().at("result"), initializeResult);
  }
}

TEST_F(Initialize, IgnoresTheVersionOfJsonRpc) {
  sendLine(R"({"jsonrpc":1,"id":1,"method":"initialize"})");
  EXPECT_EQ(receive().at("jsonrpc"), "2.0");
}

class ToolsList : public Conversation {};

TEST_F(ToolsList, ContainsOnlyTheTools) {
  sendLine(request("tools/list", "2"));
  const json reply = receive();
  EXPECT_EQ(reply.size(), 3U);
  EXPECT_EQ(reply.at("jsonrpc"), "2.0");
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("result").size(), 1U);
  EXPECT_EQ(reply.at("result").at("tools").size(), 11U);
}

TEST_F(ToolsList, NeedsNoInitialize) {
  sendLine(R"({"method":"tools\/list","params":{"cursor":"x"}})");
  const json reply = receive();
  EXPECT_EQ(reply.at("id"), nullptr);
  EXPECT_EQ(reply.at("result").at("tools").size(), 11U);
}

TEST_F(ToolsList, LikeInitializeDoesNotUseTheApplication) {
  endpointFile.publish(70000);
  sendLine(request("initialize"));
  sendLine(request("tools/list"));
  receive();
  receive();
  expectCleanExit();
  EXPECT_EQ(app.connectionCount(), 0U);
}

class UnknownMethod : public Conversation {};

TEST_F(UnknownMethod, WithAnIdGetsAnError) {
  sendLine(request("ping"));
  EXPECT_EQ(receive(), methodError("1", "Unknown method ping"));
}

TEST_F(UnknownMethod, WithoutAnIdGetsNothing) {
  sendLine(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
  sendLine(R"({"jsonrpc":"2.0","method":"ping"})");
  sendLine(R"({"jsonrpc":"2.0"})");
  sendLine("{}");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(UnknownMethod, MayBeANotificationWithAnId) {
  sendLine(request("notifications/initialized"));
  EXPECT_EQ(receive(), methodError("1", "Unknown method notifications/initialized"));
}

TEST_F(UnknownMethod, OfAnotherTypeIsNotNamed) {
  for (const char* method : {"5", "null", "true", R"(["initialize"])", R"({"a":"initialize"})"}) {
    sendLine(R"({"id":1,"method":)" + std::string(method) + "}");
    EXPECT_EQ(receive(), methodError("1", "Unknown method ")) << method;
  }
}

TEST_F(UnknownMethod, MayBeMissingOrEmpty) {
  sendLine(R"({"id":1})");
  EXPECT_EQ(receive(), methodError("1", "Unknown method "));
  sendLine(R"({"id":1,"method":""})");
  EXPECT_EQ(receive(), methodError("1", "Unknown method "));
}

TEST_F(UnknownMethod, MayBeAResponse) {
  sendLine(R"({"jsonrpc":"2.0","id":9,"result":{}})");
  EXPECT_EQ(receive(), methodError("9", "Unknown method "));
}

TEST_F(UnknownMethod, DiffersInLetterCaseOrWhiteSpace) {
  for (const char* method : {"Initialize", "INITIALIZE", "initialize ", " initialize", "tools/List",
                             "tools", "tools/", "tools/calls", "initialize\\u0000"}) {
    sendLine(request(method));
    const json reply = receive();
    EXPECT_EQ(reply.at("error").at("code"), -32601) << method;
    EXPECT_FALSE(reply.contains("result"));
  }
}

TEST_F(UnknownMethod, WithIdNullGetsAnError) {
  sendLine(request("ping", "null"));
  EXPECT_EQ(receive(), methodError("null", "Unknown method ping"));
}

TEST_F(UnknownMethod, IsNamedAsItWasWritten) {
  sendLine(request(R"(a \"quoted\"\nname\t\u0001 of \u00e9t\u00e9 \\ \/)"));
  EXPECT_EQ(receive(),
            methodError("1", "Unknown method a \"quoted\"\nname\t\x01 of \u00e9t\u00e9 \\ /"));
}

TEST_F(UnknownMethod, MayHaveALongName) {
  const std::string name(1'000'000, 'n');
  sendLine(request(name));
  EXPECT_TRUE(receive() == methodError("1", "Unknown method " + name));
}

TEST_F(UnknownMethod, DoesNotEndTheProcess) {
  for (const char* method : {"shutdown", "exit", "quit", "close"}) sendLine(request(method));
  for (int i = 0; i < 4; ++i) receive();
  EXPECT_TRUE(hasNoFurtherReply());
}

class RequestId : public Conversation {};

TEST_F(RequestId, OfAnyTypeIsRepeated) {
  for (const char* id : {"1", "-7", "1.5", R"("abc")", R"("")", "null", "true", "false", "[]",
                         R"([1,"two",null])", "{}", R"({"a":{"b":[1,2]}})", R"("\u0007\n")"}) {
    sendLine(request("ping", id));
    EXPECT_EQ(receive().at("id"), json::parse(id)) << id;
  }
}

TEST_F(RequestId, IsRepeatedInEveryKindOfReply) {
  const std::string id = R"({"call":[1,"x/y"]})";
  for (const std::string& line : {request("initialize", id), request("tools/list", id),
                                  request("ping", id), toolCall(R"({"name":"a"})", id)}) {
    sendLine(line);
    EXPECT_EQ(receive().at("id"), json::parse(id));
  }
}

}  // namespace
