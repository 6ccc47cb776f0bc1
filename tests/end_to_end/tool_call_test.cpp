#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What a tool call sends to the application, and the form of its result.
class ToolCall : public Conversation {
 protected:
  // The request that the application gets for a tools/call with these "params".
  json forwarded(std::string_view params) {
    const std::size_t before = app.connectionCount();
    sendLine(toolCall(params));
    receive();
    return json::parse(app.record(before + 1).received);
  }
};

TEST_F(ToolCall, SendsAProbeAndThenTheCall) {
  endpointFile.publish(app.port(), "secret", 3);
  callTool("read_file", {{"drive", "Work"}, {"path", "a/b.txt"}});
  ASSERT_EQ(app.connectionCount(), 2U);
  EXPECT_EQ(json::parse(app.record(0).received),
            json::parse(R"({"version":3,"token":"secret","tool":"drive_status","arguments":{}})"));
  EXPECT_EQ(json::parse(app.record(1).received),
            json::parse(R"({"version":3,"token":"secret","tool":"read_file",
                            "arguments":{"drive":"Work","path":"a/b.txt"}})"));
}

TEST_F(ToolCall, EachCallHasItsOwnProbe) {
  for (int call = 0; call < 3; ++call) callTool("drive_status");
  EXPECT_EQ(app.connectionCount(), 6U);
}

TEST_F(ToolCall, WithoutParamsHasAnEmptyNameAndEmptyArguments) {
  app.script({succeed(), refuse("which tool?")});
  sendLine(request("tools/call"));
  EXPECT_EQ(receive().at("result"), errorResult("which tool?"));
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("tool"), "");
  EXPECT_EQ(sent.at("arguments"), json::object());
}

TEST_F(ToolCall, ParamsOfAnotherTypeCountAsEmpty) {
  for (const char* params : {"null", "1", R"("text")", "true", R"([{"name":"read_file"}])"}) {
    const json sent = forwarded(params);
    EXPECT_EQ(sent.at("tool"), "") << params;
    EXPECT_EQ(sent.at("arguments"), json::object()) << params;
  }
}

TEST_F(ToolCall, NameOfAnotherTypeCountsAsEmpty) {
  for (const char* name : {"null", "1", "{}", R"(["read_file"])", "true"}) {
    const json sent = forwarded(R"({"arguments":{"a":1},"name":)" + std::string(name) + "}");
    EXPECT_EQ(sent.at("tool"), "") << name;
    EXPECT_EQ(sent.at("arguments"), json({{"a", 1}})) << name;
  }
}

TEST_F(ToolCall, ArgumentsOfAnotherTypeCountAsEmpty) {
  for (const char* arguments : {R"("text")", R"([1,{"a":1}])", "null", "1", "false"}) {
    const json sent = forwarded(R"({"name":"x","arguments":)" + std::string(arguments) + "}");
    EXPECT_EQ(sent.at("tool"), "x") << arguments;
    EXPECT_EQ(sent.at("arguments"), json::object()) << arguments;
  }
}

TEST_F(ToolCall, LastOfRepeatedMembersCounts) {
  sendLine(R"({"id":1,"method":"tools/call","params":{"name":"first"},)"
           R"("params":{"name":"a","name":"b","arguments":{"x":1},"arguments":{"y":1,"y":2}}})");
  receive();
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("tool"), "b");
  EXPECT_EQ(sent.at("arguments"), json({{"y", 2}}));
}

TEST_F(ToolCall, ArgumentsAreForwardedUnchanged) {
  const json arguments = json::parse(R"({"limit":"not a number","nested":{"b":[1,{"a":null}],
      "":true},"text":"a/b \"q\" \\ \n\t\u0001 é€😀","empty":{},"none":[],"max_bytes":-1})");
  callTool("search_drives", arguments);
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"), arguments);
}

TEST_F(ToolCall, UnknownMembersOfParamsAreNotForwarded) {
  EXPECT_EQ(forwarded(R"({"name":"x","_meta":{"progressToken":1},"token":"mine"})").size(), 4U);
}

TEST_F(ToolCall, NameOutsideTheCatalogueIsForwarded) {
  EXPECT_EQ(forwarded(R"({"name":"Read_File \u00e9/\"x\""})").at("tool"), "Read_File \u00e9/\"x\"");
  EXPECT_EQ(forwarded(R"({"name":""})").at("tool"), "");
}

TEST_F(ToolCall, WithoutIdIsForwardedAndAnsweredWithIdNull) {
  sendLine(R"({"method":"tools/call","params":{"name":"move_it"}})");
  EXPECT_EQ(receive().at("id"), nullptr);
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "move_it");
}

TEST_F(ToolCall, SuccessIsOneText) {
  EXPECT_EQ(callWithReply(R"({"ok":true,"result":[1]})"), textResult("[\n  1\n]"));
}

TEST_F(ToolCall, FailureIsItsMessageMarkedAsAnError) {
  EXPECT_EQ(callWithReply(R"({"ok":false,"error":"The drive is locked."})"),
            errorResult("The drive is locked."));
}

TEST_F(ToolCall, TokenAppearsInNoReply) {
  const std::string token = "tok/en-\u00e9-\\u0041";
  endpointFile.publish(app.port(), token);
  for (const char* text : {R"({"ok":true,"result":{"a":1}})", R"({"ok":false,"error":"no"})", "{}",
                           "garbage", "[1,2"}) {
    app.script({succeed(), reply(text)});
    sendLine(toolCall(R"({"name":"drive_status"})"));
    EXPECT_EQ(receiveLine().find("tok"), std::string::npos);
  }
  EXPECT_EQ(json::parse(app.record(9).received).at("token"), token);
}

TEST_F(ToolCall, DriveStatusIsACallAfterItsProbe) {
  app.script({succeed(R"(["probe"])"), succeed(R"(["call"])")});
  EXPECT_EQ(callTool("drive_status"), textResult("[\n  \"call\"\n]"));
}

}  // namespace
