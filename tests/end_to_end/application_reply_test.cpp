#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// The tool result that each kind of reply leads to.
class ApplicationReply : public Conversation {
 protected:
  void expectUnreadable(std::string_view appReply) {
    EXPECT_EQ(callWithReply(appReply), errorResult(unreadableReply)) << appReply.substr(0, 200);
  }
};

TEST_F(ApplicationReply, OkWithoutResultIsAnEmptyObject) {
  EXPECT_EQ(json::parse(callText(R"({"ok":true})")), json::object());
}

TEST_F(ApplicationReply, OkWithNullResultIsNull) {
  EXPECT_EQ(callText(R"({"ok":true,"result":null})"), "null");
}

TEST_F(ApplicationReply, OkWithAnErrorIsSuccess) {
  EXPECT_EQ(callText(R"({"error":"ignored","ok":true,"result":[7]})"), "[\n  7\n]");
}

TEST_F(ApplicationReply, NotOkWithAResultIsRefused) {
  EXPECT_EQ(callWithReply(R"({"ok":false,"result":{"a":1}})"), errorResult(refusedRequest));
}

TEST_F(ApplicationReply, ErrorWithoutOkIsShown) {
  EXPECT_EQ(callWithReply(R"({"error":" No such drive.\n"})"), errorResult(" No such drive.\n"));
}

TEST_F(ApplicationReply, OkAsAStringAndErrorAsANumberIsRefused) {
  EXPECT_EQ(callWithReply(R"({"ok":"true","error":5})"), errorResult(refusedRequest));
}

TEST_F(ApplicationReply, OnlyOkTrueIsSuccess) {
  for (const char* ok : {"null", "\"\"", "{}", "[true]", "false"}) {
    const std::string text = R"({"result":[1],"ok":)" + std::string(ok) + "}";
    EXPECT_EQ(callWithReply(text), errorResult(refusedRequest)) << ok;
  }
}

TEST_F(ApplicationReply, EmptyErrorIsAnEmptyMessage) {
  EXPECT_EQ(callWithReply(R"({"ok":false,"error":""})"), errorResult(""));
}

TEST_F(ApplicationReply, ErrorOfAnotherTypeIsRefused) {
  for (const char* error : {"null", "1", "{}", R"(["text"])", "true"}) {
    const std::string text = R"({"ok":false,"error":)" + std::string(error) + "}";
    EXPECT_EQ(callWithReply(text), errorResult(refusedRequest)) << error;
  }
}

TEST_F(ApplicationReply, EmptyObjectIsRefused) {
  EXPECT_EQ(callWithReply("{}"), errorResult(refusedRequest));
}

TEST_F(ApplicationReply, MemberNamesAreCaseSensitive) {
  EXPECT_EQ(callWithReply(R"({"OK":true,"Error":"x","Result":1})"), errorResult(refusedRequest));
}

TEST_F(ApplicationReply, LastOfARepeatedMemberCounts) {
  EXPECT_EQ(callText(R"({"ok":false,"result":[1],"ok":true,"result":[2]})"), "[\n  2\n]");
}

TEST_F(ApplicationReply, ArrayIsUnreadable) {
  expectUnreadable(R"([{"ok":true}])");
}

TEST_F(ApplicationReply, ScalarIsUnreadable) {
  for (const char* text : {R"("text")", "42", "true", "null"}) expectUnreadable(text);
}

TEST_F(ApplicationReply, InvalidJsonIsUnreadable) {
  for (const char* text : {"garbage", R"({"ok":true)", R"({"ok":tru})", R"({"ok":true,})",
                           R"({"ok":true,"x":01.2})", R"({"ok":true,"x":"\q"})", " "}) {
    expectUnreadable(text);
  }
}

TEST_F(ApplicationReply, ObjectFollowedByBytesIsUnreadable) {
  expectUnreadable(R"({"ok":true}x)");
  expectUnreadable(R"({"ok":true}{"ok":true})");
}

TEST_F(ApplicationReply, InvalidUtf8IsUnreadable) {
  expectUnreadable("{\"ok\":true,\"result\":[\"\xFF\"]}");
  expectUnreadable("{\"ok\":false,\"error\":\"\xC3\"}");
  expectUnreadable("{\"ok\":true,\"unused\":\"\xED\xA0\x80\"}");
}

TEST_F(ApplicationReply, NestingAbove512IsUnreadable) {
  expectUnreadable(R"({"ok":true,"result":)" + nestedArrays(512) + "}");
  expectUnreadable(R"({"ok":true,"unused":)" + nestedArrays(200'000) + "}");
}

TEST_F(ApplicationReply, LeadingByteOrderMarkIsSkipped) {
  EXPECT_EQ(callText("\xEF\xBB\xBF{\"ok\":true,\"result\":[1]}"), "[\n  1\n]");
}

TEST_F(ApplicationReply, WhiteSpaceAroundTheObjectIsAllowed) {
  EXPECT_EQ(callText(" \r\n\t{\"ok\" : true , \"result\" : [1] }\r\n \n"), "[\n  1\n]");
}

TEST_F(ApplicationReply, FailureDoesNotAffectTheNextCall) {
  expectUnreadable("garbage");
  EXPECT_EQ(callText(R"({"ok":true,"result":[1]})"), "[\n  1\n]");
}

}  // namespace
