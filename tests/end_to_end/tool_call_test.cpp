#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What a tool call sends to the application, and the shape of what it gives the agent.
class ToolCall : public Conversation {
 protected:
  // The application's view of a tools/call with this "params" text.
  json forwarded(std::string_view params) {
    const std::size_t before = app.connectionCount();
    say(toolCall(params));
    hear();
    return json::parse(app.record(before + 1).received);
  }
};

TEST_F(ToolCall, ReachesTheApplicationAsAProbeAndThenTheCall) {
  endpointFile.publish(app.port(), "secret", 3);
  callTool("read_file", {{"drive", "Work"}, {"path", "a/b.txt"}});
  ASSERT_EQ(app.connectionCount(), 2U);
  EXPECT_EQ(json::parse(app.record(0).received),
            json::parse(R"({"version":3,"token":"secret","tool":"drive_status","arguments":{}})"));
  EXPECT_EQ(json::parse(app.record(1).received),
            json::parse(R"({"version":3,"token":"secret","tool":"read_file",
                            "arguments":{"drive":"Work","path":"a/b.txt"}})"));
}

TEST_F(ToolCall, EachCallIsProbedAfresh) {
  for (int call = 0; call < 3; ++call) callTool("drive_status");
  EXPECT_EQ(app.connectionCount(), 6U);
}

TEST_F(ToolCall, WithoutParamsSendsAnEmptyNameAndEmptyArguments) {
  app.script({answer(), refuse("which tool?")});
  say(request("tools/call"));
  EXPECT_EQ(hear().at("result"), failure("which tool?"));
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("tool"), "");
  EXPECT_EQ(sent.at("arguments"), json::object());
}

TEST_F(ToolCall, ParamsThatAreNoObjectCountAsEmpty) {
  for (const char* params : {"null", "1", R"("text")", "true", R"([{"name":"read_file"}])"}) {
    const json sent = forwarded(params);
    EXPECT_EQ(sent.at("tool"), "") << params;
    EXPECT_EQ(sent.at("arguments"), json::object()) << params;
  }
}

TEST_F(ToolCall, NameThatIsNoStringCountsAsEmpty) {
  for (const char* name : {"null", "1", "{}", R"(["read_file"])", "true"}) {
    const json sent = forwarded(R"({"arguments":{"a":1},"name":)" + std::string(name) + "}");
    EXPECT_EQ(sent.at("tool"), "") << name;
    EXPECT_EQ(sent.at("arguments"), json({{"a", 1}})) << name;
  }
}

TEST_F(ToolCall, ArgumentsThatAreNoObjectCountAsEmpty) {
  for (const char* arguments : {R"("text")", R"([1,{"a":1}])", "null", "1", "false"}) {
    const json sent = forwarded(R"({"name":"x","arguments":)" + std::string(arguments) + "}");
    EXPECT_EQ(sent.at("tool"), "x") << arguments;
    EXPECT_EQ(sent.at("arguments"), json::object()) << arguments;
  }
}

TEST_F(ToolCall, LastOfTwoParamsNamesAndArgumentsCounts) {
  say(R"({"id":1,"method":"tools/call","params":{"name":"first"},)"
      R"("params":{"name":"a","name":"b","arguments":{"x":1},"arguments":{"y":1,"y":2}}})");
  hear();
  const json sent = json::parse(app.record(1).received);
  EXPECT_EQ(sent.at("tool"), "b");
  EXPECT_EQ(sent.at("arguments"), json({{"y", 2}}));
}

TEST_F(ToolCall, ArgumentsAreForwardedUncheckedAndUnchanged) {
  const json arguments = json::parse(R"({"limit":"not a number","nested":{"b":[1,{"a":null}],
      "":true},"text":"a/b \"q\" \\ \n\t\u0001 é€😀","empty":{},"none":[],"max_bytes":-1})");
  callTool("search_drives", arguments);
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"), arguments);
}

TEST_F(ToolCall, MembersOfParamsThatNobodyKnowsAreNotForwarded) {
  EXPECT_EQ(forwarded(R"({"name":"x","_meta":{"progressToken":1},"token":"mine"})").size(), 4U);
}

TEST_F(ToolCall, NameOutsideTheCatalogueIsForwarded) {
  EXPECT_EQ(forwarded(R"({"name":"Read_File \u00e9/\"x\""})").at("tool"), "Read_File \u00e9/\"x\"");
  EXPECT_EQ(forwarded(R"({"name":""})").at("tool"), "");
}

TEST_F(ToolCall, WithoutIdIsCarriedOutAndAnsweredUnderNull) {
  say(R"({"method":"tools/call","params":{"name":"move_it"}})");
  EXPECT_EQ(hear().at("id"), nullptr);
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "move_it");
}

TEST_F(ToolCall, SuccessHasOneTextAndNoErrorMark) {
  EXPECT_EQ(callAnsweredWith(R"({"ok":true,"result":[1]})"), textResult("[\n  1\n]"));
}

TEST_F(ToolCall, FailureHasItsMessageAsTextAndTheErrorMark) {
  EXPECT_EQ(callAnsweredWith(R"({"ok":false,"error":"The drive is locked."})"),
            failure("The drive is locked."));
}

TEST_F(ToolCall, TokenAppearsInNoReply) {
  const std::string token = "tok/en-\u00e9-\\u0041";
  endpointFile.publish(app.port(), token);
  for (const char* text : {R"({"ok":true,"result":{"a":1}})", R"({"ok":false,"error":"no"})", "{}",
                           "garbage", "[1,2"}) {
    app.script({answer(), reply(text)});
    say(toolCall(R"({"name":"drive_status"})"));
    EXPECT_EQ(hearLine().find("tok"), std::string::npos);
  }
  EXPECT_EQ(json::parse(app.record(9).received).at("token"), token);
}

TEST_F(ToolCall, DriveStatusOfTheAgentIsACallOfItsOwn) {
  app.script({succeed(R"(["probe"])"), succeed(R"(["call"])")});
  EXPECT_EQ(callTool("drive_status"), textResult("[\n  \"call\"\n]"));
}

}  // namespace
