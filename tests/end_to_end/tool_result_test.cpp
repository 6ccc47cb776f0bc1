#include "tests/support/conversation.h"

namespace {

using nlohmann::json;

// How the application's result is written as the text of a tool result.
class ToolResult : public Conversation {
 protected:
  std::string textOf(std::string_view result) {
    return callText(R"({"ok":true,"result":)" + std::string(result) + "}");
  }
};

TEST_F(ToolResult, MembersAreSortedAtEveryLevelOnePerLine) {
  EXPECT_EQ(textOf(R"({"b":1,"a":{"d":[1,"x",null,true],"c":false}})"), R"({
  "a" : {
    "c" : false,
    "d" : [
      1,
      "x",
      null,
      true
    ]
  },
  "b" : 1
})");
}

TEST_F(ToolResult, MembersOfObjectsInArraysAreSorted) {
  EXPECT_EQ(textOf(R"([{"z":[[1],{"q":2,"p":1}],"y":0},[3]])"), R"([
  {
    "y" : 0,
    "z" : [
      [
        1
      ],
      {
        "p" : 1,
        "q" : 2
      }
    ]
  },
  [
    3
  ]
])");
}

TEST_F(ToolResult, MembersAreSortedByTheirDecodedBytes) {
  EXPECT_EQ(textOf(R"({"b":1,"a":2,"B":3,"ab":4,"":5,"a b":6,"\u0061\u0000":7,"10":8,"9":9})"), R"({
  "" : 5,
  "10" : 8,
  "9" : 9,
  "B" : 3,
  "a" : 2,
  "a\u0000" : 7,
  "a b" : 6,
  "ab" : 4,
  "b" : 1
})");
}

TEST_F(ToolResult, MembersAreSortedAsUtf8) {
  EXPECT_EQ(textOf("{\"\\ud83d\\ude00\":1,\"\uFFFD\":2,\"\\u00e9\":3,\"z\":4}"),
            "{\n"
            "  \"z\" : 4,\n  \"\u00e9\" : 3,\n  \"\uFFFD\" : 2,\n  \"\U0001F600\" : 1\n}");
}

TEST_F(ToolResult, LastOfARepeatedMemberCounts) {
  EXPECT_EQ(textOf(R"({"a":1,"b":2,"\u0061":3})"), "{\n  \"a\" : 3,\n  \"b\" : 2\n}");
}

TEST_F(ToolResult, ArraysKeepTheirOrder) {
  EXPECT_EQ(textOf("[3,1,2]"), "[\n  3,\n  1,\n  2\n]");
}

TEST_F(ToolResult, WhiteSpaceOfTheApplicationIsNotKept) {
  EXPECT_EQ(textOf(" { \"a\" :\r\n\t[ 1 ,2 ] } "), "{\n  \"a\" : [\n    1,\n    2\n  ]\n}");
}

TEST_F(ToolResult, EmptyObjectsAndArraysStayEmpty) {
  for (const char* result : {"{}", "[]", R"({"a":{},"b":[]})", "[[],{},[[]]]"}) {
    EXPECT_EQ(json::parse(textOf(result)), json::parse(result)) << result;
  }
}

TEST_F(ToolResult, ScalarIsAJsonFragment) {
  EXPECT_EQ(textOf("42"), "42");
  EXPECT_EQ(textOf(R"("x/y")"), R"("x\/y")");
  EXPECT_EQ(textOf("null"), "null");
  EXPECT_EQ(textOf("true"), "true");
  EXPECT_EQ(textOf("false"), "false");
  EXPECT_EQ(textOf("-1.50e+7"), "-1.50e+7");
  EXPECT_EQ(textOf(R"("")"), R"("")");
}

TEST_F(ToolResult, SlashIsEscapedInTheTextAndAgainInTheReply) {
  app.script({succeed(), succeed(R"({"path":"a/b"})")});
  sendLine(toolCall(R"({"name":"x"})"));
  EXPECT_TRUE(contains(receiveLine(), R"("{\n  \"path\" : \"a\\\/b\"\n}")"));
}

TEST_F(ToolResult, EscapedSlashOfTheApplicationIsTheSameSlash) {
  EXPECT_EQ(textOf(R"(["a\/b"])"), "[\n  \"a\\/b\"\n]");
}

TEST_F(ToolResult, EscapesKeepTheirMeaning) {
  const std::string result =
      R"({"k\"\\\n\u0001\/":"\"\\\/\b\f\n\r\t\u0000\u001f\u007f\u0041\u00e9\u20ac\ud83d\ude00"})";
  const std::string text = textOf(result);
  EXPECT_EQ(json::parse(text), json::parse(result));
  EXPECT_TRUE(contains(text, "A\u00e9\u20ac\U0001F600"));
}

TEST_F(ToolResult, NonAsciiTextIsNotEscaped) {
  app.script({succeed(), succeed(R"(["\u00e9\u4e2d\ud83d\ude00é中😀"])")});
  sendLine(toolCall(R"({"name":"x"})"));
  EXPECT_TRUE(contains(receiveLine(), "é中😀é中😀"));
}

TEST_F(ToolResult, ControlCharactersAreEscapedInTheReply) {
  app.script({succeed(), refuse(R"(a\u0000b\u0001c\u001fd\n\t\r\b\f)")});
  sendLine(toolCall(R"({"name":"x"})"));
  const std::string line = receiveLine();
  for (const char byte : line) EXPECT_GE(static_cast<unsigned char>(byte), 0x20);
  EXPECT_EQ(json::parse(line).at("result"), errorResult(std::string_view("a\0b\x01"
                                                                         "c\x1f"
                                                                         "d\n\t\r\b\f",
                                                                         12)));
}

TEST_F(ToolResult, DeepestNestingIsWritten) {
  const std::string text = textOf(nestedArrays(511));
  EXPECT_EQ(json::parse(text), json::parse(nestedArrays(511)));
  EXPECT_TRUE(contains(text, "[\n" + std::string(std::size_t{2} * 509, ' ') + "["));
}

TEST_F(ToolResult, ManySmallObjectsAreAllWritten) {
  json listing = json::array();
  for (int i = 0; i < 20'000; ++i) {
    listing.push_back({{"name", "file " + std::to_string(i)}, {"size", i}, {"dir", i % 7 == 0}});
  }
  EXPECT_TRUE(json::parse(textOf(listing.dump())) == listing);
}

}  // namespace
