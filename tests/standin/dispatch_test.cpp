// Whole requests: token, version and tool, and the form of the reply.
#include "standin/dispatch.h"

#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

using nlohmann::json;

namespace {

class Dispatch : public ServedFolders, public testing::Test {
 protected:
  static json request() {
    return {{"version", 1},
            {"token", "the token"},
            {"tool", "drive_status"},
            {"arguments", json::object()}};
  }
  json replyWith(const char* member, const json& value) {
    json changed = request();
    changed[member] = value;
    return reply(changed.dump());
  }
  json replyWithout(const char* member) {
    json changed = request();
    changed.erase(member);
    return reply(changed.dump());
  }
  static json refused(const char* sentence) { return {{"ok", false}, {"error", sentence}}; }
};

TEST_F(Dispatch, SuccessHasOkAndResultOnly) {
  const json answer = reply(request().dump());
  EXPECT_EQ(answer.size(), 2);
  EXPECT_EQ(answer.at("ok"), true);
  EXPECT_TRUE(answer.at("result").is_object());
}

TEST_F(Dispatch, WrongTokenIsRefused) {
  const json sentence = refused("The access token is not the one that Quillmark has published.");
  for (const json& token :
       {json("another"), json("the token "), json(""), json(nullptr), json(1)}) {
    EXPECT_EQ(replyWith("token", token), sentence) << token;
  }
  EXPECT_EQ(replyWithout("token"), sentence);
}

TEST_F(Dispatch, AnotherVersionIsRefused) {
  EXPECT_EQ(replyWith("version", 2), refused("The request is not of version 1."));
  EXPECT_EQ(replyWithout("version"), refused("The request is not of version 1."));
}

TEST_F(Dispatch, UnknownToolIsRefused) {
  EXPECT_EQ(replyWith("tool", "format_drive"), refused("There is no tool \"format_drive\"."));
  EXPECT_EQ(replyWith("tool", ""), refused("There is no tool \"\"."));
  EXPECT_EQ(replyWith("tool", "Drive_Status"), refused("There is no tool \"Drive_Status\"."));
  EXPECT_EQ(replyWith("tool", 7), refused("The request names no tool."));
}

TEST_F(Dispatch, VeryLongNameIsShortenedInTheSentence) {
  const json answer = replyWith("tool", std::string(100000, 'n'));
  EXPECT_LT(answer.at("error").get<std::string>().size(), 300);
}

TEST_F(Dispatch, ArgumentsMustBeAnObject) {
  EXPECT_EQ(replyWith("arguments", json::array()), refused("The arguments are not a JSON object."));
  EXPECT_EQ(replyWithout("arguments"), refused("The arguments are not a JSON object."));
}

TEST_F(Dispatch, RequestThatIsNotAnObjectIsRefused) {
  for (const char* text : {"", "nonsense", "[]", "\"text\"", "{\"a\":}", "{\"a\":\"\xFF\"}"}) {
    EXPECT_EQ(reply(text), refused("The request is not a JSON object.")) << text;
  }
}

TEST_F(Dispatch, DeeplyNestedArgumentIsRefusedLikeAnyUnknownOne) {
  const std::string deep = std::string(200000, '[') + std::string(200000, ']');
  const std::string text = R"({"version":1,"token":"the token","tool":"drive_status","arguments":)"
                           R"({"deep":)" +
                           deep + "}}";
  EXPECT_EQ(reply(text), refused(R"(There is no argument "deep"; drive_status takes none.)"));
}

TEST_F(Dispatch, AnswerLongerThanAReplyMayBeIsRefused) {
  putFile(alpha("note"), std::string(1'000'000, '\x01'));  // six bytes each in JSON
  EXPECT_NE(refusal("read_file", {{"drive", "Alpha"}, {"path", "note"}})
                .find("longer than a reply may be"),
            std::string::npos);
}

}  // namespace
