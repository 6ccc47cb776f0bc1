#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// What each kind of reply of the application comes to for the agent.
class AppReply : public Conversation {
 protected:
  void isUnreadable(std::string_view appReply) {
    EXPECT_EQ(callAnsweredWith(appReply), failure(unreadableReply)) << appReply.substr(0, 200);
  }
};

TEST_F(AppReply, OkWithoutResultIsAnEmptyObject) {
  EXPECT_EQ(json::parse(callGivingText(R"({"ok":true})")), json::object());
}

TEST_F(AppReply, OkWithNullResultIsNull) {
  EXPECT_EQ(callGivingText(R"({"ok":true,"result":null})"), "null");
}

TEST_F(AppReply, OkWithAnErrorBesideItIsSuccess) {
  EXPECT_EQ(callGivingText(R"({"error":"ignored","ok":true,"result":[7]})"), "[\n  7\n]");
}

TEST_F(AppReply, NotOkWithAResultIsRefused) {
  EXPECT_EQ(callAnsweredWith(R"({"ok":false,"result":{"a":1}})"), failure(refusedRequest));
}

TEST_F(AppReply, ErrorWithoutOkIsItsText) {
  EXPECT_EQ(callAnsweredWith(R"({"error":" No such drive.\n"})"), failure(" No such drive.\n"));
}

TEST_F(AppReply, OkAsAStringAndErrorAsANumberIsRefused) {
  EXPECT_EQ(callAnsweredWith(R"({"ok":"true","error":5})"), failure(refusedRequest));
}

TEST_F(AppReply, OkThatIsNoBooleanIsNoSuccess) {
  for (const char* ok : {"null", "\"\"", "{}", "[true]", "false"}) {
    const std::string text = R"({"result":[1],"ok":)" + std::string(ok) + "}";
    EXPECT_EQ(callAnsweredWith(text), failure(refusedRequest)) << ok;
  }
}

TEST_F(AppReply, EmptyErrorIsAnEmptyMessage) {
  EXPECT_EQ(callAnsweredWith(R"({"ok":false,"error":""})"), failure(""));
}

TEST_F(AppReply, ErrorThatIsNoStringIsRefused) {
  for (const char* error : {"null", "1", "{}", R"(["text"])", "true"}) {
    const std::string text = R"({"ok":false,"error":)" + std::string(error) + "}";
    EXPECT_EQ(callAnsweredWith(text), failure(refusedRequest)) << error;
  }
}

TEST_F(AppReply, EmptyObjectIsRefused) {
  EXPECT_EQ(callAnsweredWith("{}"), failure(refusedRequest));
}

TEST_F(AppReply, MemberNamesAreCaseSensitive) {
  EXPECT_EQ(callAnsweredWith(R"({"OK":true,"Error":"x","Result":1})"), failure(refusedRequest));
}

TEST_F(AppReply, LastOfTwoMembersWithTheSameNameCounts) {
  EXPECT_EQ(callGivingText(R"({"ok":false,"result":[1],"ok":true,"result":[2]})"), "[\n  2\n]");
}

TEST_F(AppReply, ArrayIsUnreadable) {
  isUnreadable(R"([{"ok":true}])");
}

TEST_F(AppReply, BareScalarIsUnreadable) {
  for (const char* text : {R"("text")", "42", "true", "null"}) isUnreadable(text);
}

TEST_F(AppReply, TextThatIsNoJsonIsUnreadable) {
  for (const char* text : {"garbage", R"({"ok":true)", R"({"ok":tru})", R"({"ok":true,})",
                           R"({"ok":true,"x":01.2})", R"({"ok":true,"x":"\q"})", " "}) {
    isUnreadable(text);
  }
}

TEST_F(AppReply, BytesAfterTheObjectMakeItUnreadable) {
  isUnreadable(R"({"ok":true}x)");
  isUnreadable(R"({"ok":true}{"ok":true})");
}

TEST_F(AppReply, InvalidUtf8IsUnreadable) {
  isUnreadable("{\"ok\":true,\"result\":[\"\xFF\"]}");
  isUnreadable("{\"ok\":false,\"error\":\"\xC3\"}");
  isUnreadable("{\"ok\":true,\"unused\":\"\xED\xA0\x80\"}");
}

TEST_F(AppReply, NestingOfFiveHundredAndThirteenIsUnreadable) {
  isUnreadable(R"({"ok":true,"result":)" + nestedArrays(512) + "}");
  isUnreadable(R"({"ok":true,"unused":)" + nestedArrays(200'000) + "}");
}

TEST_F(AppReply, LeadingByteOrderMarkIsSkipped) {
  EXPECT_EQ(callGivingText("\xEF\xBB\xBF{\"ok\":true,\"result\":[1]}"), "[\n  1\n]");
}

TEST_F(AppReply, BlanksAroundTheObjectAreAllowed) {
  EXPECT_EQ(callGivingText(" \r\n\t{\"ok\" : true , \"result\" : [1] }\r\n \n"), "[\n  1\n]");
}

TEST_F(AppReply, FailureLeavesTheNextCallUnharmed) {
  isUnreadable("garbage");
  EXPECT_EQ(callGivingText(R"({"ok":true,"result":[1]})"), "[\n  1\n]");
}

}  // namespace
