#include "json/value.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "json/reader.h"

namespace json {
namespace {

/// A message with this value as one of its members.
class MessageWith {
 public:
  explicit MessageWith(std::string_view value)
      : text_(R"({"before":[1,{"value":0}],"value":)" + std::string(value) + ",\"after\":{}}"),
        document_(read(text_)) {}

  Value value() const { return document_.value().root().member("value").value(); }

 private:
  std::string text_;
  std::optional<Document> document_;
};

std::optional<std::int64_t> integer(std::string_view text) {
  return MessageWith(text).value().integer();
}

std::optional<std::string> string(std::string_view text) {
  return MessageWith(text).value().string();
}

TEST(Value, HasAKind) {
  EXPECT_EQ(MessageWith(R"({"a":1})").value().kind(), Kind::object);
  EXPECT_EQ(MessageWith("[1]").value().kind(), Kind::array);
  EXPECT_EQ(MessageWith(R"("a")").value().kind(), Kind::string);
  EXPECT_EQ(MessageWith("-1.5").value().kind(), Kind::number);
  EXPECT_EQ(MessageWith("true").value().kind(), Kind::trueLiteral);
  EXPECT_EQ(MessageWith("false").value().kind(), Kind::falseLiteral);
  EXPECT_EQ(MessageWith("null").value().kind(), Kind::null);
}

TEST(Value, IsTrueOnlyForTheLiteral) {
  EXPECT_TRUE(MessageWith("true").value().isTrue());
  for (const char* other : {"false", "null", "1", R"("true")", "[true]", "{}"}) {
    EXPECT_FALSE(MessageWith(other).value().isTrue()) << other;
  }
}

TEST(Value, MemberIsFoundByItsExactName) {
  const MessageWith message(R"({"Name":1,"name":2,"name ":3})");
  EXPECT_EQ(message.value().member("name")->integer(), 2);
  EXPECT_EQ(message.value().member("Name")->integer(), 1);
  EXPECT_FALSE(message.value().member("NAME"));
  EXPECT_FALSE(message.value().member("nam"));
  EXPECT_FALSE(message.value().member(""));
}

TEST(Value, MemberIsFoundByItsDecodedName) {
  const MessageWith message(R"({"a\/b":1,"\u0069d":2,"\ud83d\ude00":3,"":4})");
  EXPECT_EQ(message.value().member("a/b")->integer(), 1);
  EXPECT_EQ(message.value().member("id")->integer(), 2);
  EXPECT_EQ(message.value().member("\xF0\x9F\x98\x80")->integer(), 3);
  EXPECT_EQ(message.value().member("")->integer(), 4);
}

TEST(Value, LastOfARepeatedMemberCounts) {
  EXPECT_EQ(MessageWith(R"({"a":1,"b":2,"\u0061":3})").value().member("a")->integer(), 3);
  EXPECT_EQ(MessageWith(R"({"\u0061":1,"b":2,"a":4})").value().member("a")->integer(), 4);
}

TEST(Value, MembersOfInnerObjectsAreNotFound) {
  EXPECT_FALSE(MessageWith(R"({"a":{"b":1},"c":[{"b":2}],"d":"b"})").value().member("b"));
}

TEST(Value, MemberMayHaveAnyValue) {
  const MessageWith message(R"({"a":null,"b":[],"c":{"d":1},"e":"f"})");
  EXPECT_EQ(message.value().member("a")->kind(), Kind::null);
  EXPECT_EQ(message.value().member("b")->kind(), Kind::array);
  EXPECT_EQ(message.value().member("c")->member("d")->integer(), 1);
  EXPECT_EQ(message.value().member("e")->string(), "f");
}

TEST(Value, OnlyAnObjectHasMembers) {
  for (const char* other : {R"(["a",1])", R"("a")", "1", "true", "false", "null", "{}"}) {
    EXPECT_FALSE(MessageWith(other).value().member("a")) << other;
  }
}

TEST(Value, IntegerMayHave64Bits) {
  EXPECT_EQ(integer("0"), 0);
  EXPECT_EQ(integer("-0"), 0);
  EXPECT_EQ(integer("42"), 42);
  EXPECT_EQ(integer("-1"), -1);
  EXPECT_EQ(integer("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(integer("-9223372036854775808"), INT64_MIN);
}

TEST(Value, OtherValuesAreNotIntegers) {
  for (const char* other : {"9223372036854775808", "-9223372036854775809", "100000000000000000000",
                            "1.5", "0.1", R"("1")", "true", "null", "[1]", "{}"}) {
    EXPECT_FALSE(integer(other)) << other;
  }
}

TEST(Value, StringIsDecoded) {
  EXPECT_EQ(string(R"("")"), "");
  EXPECT_EQ(string(R"("plain")"), "plain");
  EXPECT_EQ(string(R"("a/b")"), "a/b");
  EXPECT_EQ(string(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
  EXPECT_EQ(string(R"("\u0041\u00e9\u20AC")"), "A\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(string(R"("\ud83d\ude00 \uD83D\uDE00")"), "\xF0\x9F\x98\x80 \xF0\x9F\x98\x80");
  EXPECT_EQ(string(R"("\udbff\udfff")"), "\xF4\x8F\xBF\xBF");
  EXPECT_EQ(string(R"("a\u0000b")"), std::string("a\0b", 3));
  EXPECT_EQ(string("\"\xE2\x80\x94\""), "\xE2\x80\x94");
  EXPECT_EQ(string(R"("\\u0041")"), "\\u0041");
}

TEST(Value, UnpairedSurrogatesAreThreeBytesEach) {
  EXPECT_EQ(string(R"("\ud800")"), "\xED\xA0\x80");
  EXPECT_EQ(string(R"("\udfffx")"), "\xED\xBF\xBFx");
  EXPECT_EQ(string(R"("\ud800\ud800")"), "\xED\xA0\x80\xED\xA0\x80");
  EXPECT_EQ(string(R"("\udc00\ud800")"), "\xED\xB0\x80\xED\xA0\x80");
  EXPECT_EQ(string(R"("\ud800\u0041")"),
            "\xED\xA0\x80"
            "A");
  EXPECT_EQ(string(R"("\ud800\n")"), "\xED\xA0\x80\n");
  EXPECT_EQ(string(R"("\ud800\ud83d\ude00")"), "\xED\xA0\x80\xF0\x9F\x98\x80");
}

TEST(Value, OtherValuesAreNotStrings) {
  for (const char* other : {"1", "true", "null", R"(["a"])", R"({"a":"b"})"}) {
    EXPECT_FALSE(string(other)) << other;
  }
}

TEST(Value, TokenIsTheTextOfTheValue) {
  EXPECT_EQ(MessageWith("-1.50E+02").value().token(), "-1.50E+02");
  EXPECT_EQ(MessageWith(R"("a\/\u0041")").value().token(), R"(a\/\u0041)");
  EXPECT_EQ(MessageWith(" true ").value().token(), "true");
}

TEST(EmptyObject, HasNoMembers) {
  EXPECT_TRUE(emptyObject().isObject());
  EXPECT_FALSE(emptyObject().member(""));
  EXPECT_EQ(emptyObject().node()->descendants(), 0U);
}

}  // namespace
}  // namespace json
