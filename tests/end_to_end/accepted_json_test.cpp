#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// Which lines are requests: a line gets either the error for its unknown method or no reply.
class AcceptedJson : public Conversation {
 protected:
  void expectDropped(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      sendLine(line);
      EXPECT_TRUE(hasNoFurtherReply()) << line;
    }
  }

  // Each value is an unused member of an otherwise valid request.
  void expectDroppedWithMember(const std::vector<std::string>& values) {
    for (const std::string& value : values) {
      const std::string line = R"({"id":1,"method":"ping","unused":)" + value + "}";
      sendLine(line);
      EXPECT_TRUE(hasNoFurtherReply()) << line;
    }
  }
};

TEST_F(AcceptedJson, ObjectFollowedByTextIsDropped) {
  const std::string good = request("ping");
  expectDropped({good + "}", good + " x", good + good, good + ",", good + "1", good + "\""});
}

TEST_F(AcceptedJson, IncompleteObjectIsDropped) {
  expectDropped({"{", R"({"id":1,"method":"ping")", R"({"id":1,"method":"ping)",
                 R"({"id":1,"method":)", R"({"id":1,"method")", R"({"id":1,)"});
}

TEST_F(AcceptedJson, MisplacedPunctuationIsDropped) {
  expectDropped({R"({"id":1,"method":"ping",})", R"({,"id":1,"method":"ping"})",
                 R"({"id" 1,"method":"ping"})", R"({"id":1 "method":"ping"})",
                 R"({"id":1,,"method":"ping"})", R"({id:1,"method":"ping"})",
                 R"({'id':1,'method':'ping'})", R"({1:1,"id":1,"method":"ping"})",
                 R"({"id"::1,"method":"ping"})", R"({"id":1,"method":"ping"])"});
  expectDroppedWithMember({"[1,]", "[,1]", "[1 2]", "[1}", "{]", "[", "]", "", "[1,,2]", "/*c*/1"});
}

TEST_F(AcceptedJson, InvalidNumberOfAnUnusedMemberIsDropped) {
  expectDroppedWithMember({"01", "01.2.3", "1.", ".5", "-", "+1", "1e", "1e+", "0x10", "1.e3",
                           "-01", "--1", "NaN", "Infinity", "-Infinity", "1_000", "00", "1.2.3"});
}

TEST_F(AcceptedJson, InvalidLiteralOfAnUnusedMemberIsDropped) {
  expectDroppedWithMember({"tru", "True", "nul", "nulll", "falsee", "undefined", "truefalse"});
}

TEST_F(AcceptedJson, InvalidEscapeOfAnUnusedMemberIsDropped) {
  expectDroppedWithMember({R"("\q")", R"("\u12")", R"("\u12g4")", R"("\x41")", R"("\U0041")",
                           R"("\")", R"("\ ")", R"({"\q":1})"});
}

TEST_F(AcceptedJson, ControlCharacterInAStringIsDropped) {
  expectDroppedWithMember({"\"a\tb\"", "\"a\x01z\"", "\"a\x1f\"", "\"a\rb\"",
                           std::string("\"a\0b\"", 5), "{\"k\ty\":1}"});
}

TEST_F(AcceptedJson, ControlCharacterBetweenTokensIsDropped) {
  expectDroppedWithMember({std::string("\0"
                                       "1",
                                       2),
                           "1\x01",
                           "\x0b"
                           "1",
                           "\f1"});
}

TEST_F(AcceptedJson, UnusualValuesAreAccepted) {
  for (const std::string value :
       {"-0", "0", "0.0", "1E400", "1e-400", "-1.5E+10", "123456789012345678901234567890",
        R"("\u0000")", R"("\/\b\f\n\r\t\"\\")", "\"\x7f\"", "[]", "{}", "[[],{}]", R"({"":0})"}) {
    sendLine(R"({"unused":)" + value + R"(,"id":1,"method":"ping"})");
    EXPECT_EQ(receive().at("id"), 1) << value;
  }
}

TEST_F(AcceptedJson, EscapedMemberNamesAreTheSameNames) {
  sendLine(R"({"\u0069d":1,"m\u0065thod":"p\u0069ng"})");
  EXPECT_EQ(receive().at("error").at("message"), "Unknown method ping");
}

TEST_F(AcceptedJson, MemberNamesAreCaseSensitive) {
  sendLine(R"({"ID":1,"Method":"initialize"})");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(AcceptedJson, LastOfARepeatedMemberCounts) {
  sendLine(R"({"id":1,"method":"initialize","id":2,"m\u0065thod":"ping"})");
  const json reply = receive();
  EXPECT_EQ(reply.at("id"), 2);
  EXPECT_EQ(reply.at("error").at("message"), "Unknown method ping");
}

TEST_F(AcceptedJson, NestingOf512IsAccepted) {
  sendLine(R"({"id":1,"method":"ping","unused":)" + nestedArrays(511) + "}");
  EXPECT_EQ(receive().at("id"), 1);
}

TEST_F(AcceptedJson, NestingAbove512IsDropped) {
  expectDroppedWithMember({nestedArrays(512)});
}

TEST_F(AcceptedJson, NestingOfAMillionIsDropped) {
  sendLine(R"({"id":1,"method":"ping","unused":)" + nestedArrays(1'000'000) + "}");
  sendLine(R"({"id":1,"method":"ping","unused":)" + std::string(1'000'000, '[') + "}");
  EXPECT_TRUE(hasNoFurtherReply());
}

TEST_F(AcceptedJson, LeadingByteOrderMarkIsSkipped) {
  sendLine("\xEF\xBB\xBF" + request("ping", "8"));
  EXPECT_EQ(receive().at("id"), 8);
}

TEST_F(AcceptedJson, SecondByteOrderMarkIsDropped) {
  expectDropped({"\xEF\xBB\xBF\xEF\xBB\xBF" + request("ping"), "\xEF\xBB\xBF"});
}

TEST_F(AcceptedJson, InvalidUtf8IsReplacedAndAnswered) {
  sendLine(request("ping\xFF!"));
  EXPECT_EQ(receive().at("error").at("message"), "Unknown method ping\uFFFD!");
}

TEST_F(AcceptedJson, EachKindOfInvalidUtf8IsReplaced) {
  for (const std::string bad : {"\x80", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF",
                                "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFE", "\xF8\x88\x80\x80"}) {
    sendLine(request("<" + bad + ">"));
    std::string message = receive().at("error").at("message");
    EXPECT_TRUE(message.starts_with("Unknown method <\uFFFD")) << message;
    while (message.ends_with("\uFFFD>")) message.erase(message.size() - 4, 3);
    EXPECT_EQ(message, "Unknown method <>");
  }
}

TEST_F(AcceptedJson, InvalidUtf8OutsideAStringIsDropped) {
  expectDropped({request("ping") + "\xFF", "\xFF" + request("ping")});
}

TEST_F(AcceptedJson, Utf8OfEveryLengthIsUnchanged) {
  sendLine(request("é€😀\u007f"));
  EXPECT_TRUE(contains(receiveLine(), "Unknown method é€😀"));
}

}  // namespace
