#include "json/writer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tests/unit/written.h"

namespace json {
namespace {

/// The pretty text itself.
std::string pretty(std::string_view message) {
  return nlohmann::json::parse(prettyQuoted(message).value()).get<std::string>();
}

TEST(AppendCompact, WritesNoWhiteSpace) {
  EXPECT_EQ(compact(" { \"a\" : [ 1 , true , { } ] , \"b\" : [ ] } "),
            R"({"a":[1,true,{}],"b":[]})");
}

TEST(AppendCompact, KeepsTheOrderOfMembers) {
  EXPECT_EQ(compact(R"({"z":1,"a":{"y":2,"b":3},"m":4})"), R"({"z":1,"a":{"y":2,"b":3},"m":4})");
}

TEST(AppendCompact, KeepsTheLastOfARepeatedName) {
  EXPECT_EQ(compact(R"({"a":{"x":1},"b":2,"\u0061":3})"), R"({"b":2,"a":3})");
  EXPECT_EQ(compact(R"([{"k":1,"k":[{"k":2,"k":3}]}])"), R"([{"k":[{"k":3}]}])");
}

TEST(AppendCompact, EscapesSlashes) {
  EXPECT_EQ(compact(R"(["a/b","a\/b","\u002f","//"])"), R"(["a\/b","a\/b","\/","\/\/"])");
  EXPECT_EQ(compact(R"({"a/b":1})"), R"({"a\/b":1})");
}

TEST(AppendCompact, WritesControlCharactersAsTheShortestEscapes) {
  EXPECT_EQ(compact(R"(["\u0008\u0009\u000a\u000c\u000d"])"), R"(["\b\t\n\f\r"])");
  EXPECT_EQ(compact(R"(["\u0000\u0001\u000B\u001F"])"), R"(["\u0000\u0001\u000b\u001f"])");
  EXPECT_EQ(compact(R"(["\u0022\u005C"])"), R"(["\"\\"])");
}

TEST(AppendCompact, WritesNonAsciiAsUtf8) {
  EXPECT_EQ(compact(R"(["\u00e9\u20ac\ud83d\ude00\u007f"])"),
            "[\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\x7F\"]");
  EXPECT_EQ(compact("[\"\xE2\x80\xA8\"]"), "[\"\xE2\x80\xA8\"]");
}

TEST(AppendCompact, WritesAnUnpairedSurrogateAsAnEscape) {
  EXPECT_EQ(compact(R"(["\uD800","\udFFF/","\ud800\ud83d\ude00","\ud83d\\ude00"])"),
            "[\"\\ud800\",\"\\udfff\\/\",\"\\ud800\xF0\x9F\x98\x80\",\"\\ud83d\\\\ude00\"]");
}

TEST(AppendCompact, CopiesNumbersUnchanged) {
  constexpr std::string_view array =
      "[0,-0,1.0,1.50,1E5,1e+05,0e-0,12345678901234567890123,9007199254740993,0.1e400,1e-999]";
  EXPECT_EQ(compact(array), array);
}

TEST(AppendCompact, WritesTheDeepestNesting) {
  const std::string deep = std::string(512, '[') + std::string(512, ']');
  EXPECT_EQ(compact(deep), deep);
}

TEST(AppendCompact, WritesAValueInsideAMessageAlone) {
  const auto document = read(R"({"a":{"b":[1,"x"]},"c":"d\n","e":-0.0,"f":null})");
  ASSERT_TRUE(document);
  const auto written = [&](std::string_view name) {
    common::Bytes text;
    appendCompact(text, *document->root().member(name));
    return std::string(text.view());
  };
  EXPECT_EQ(written("a"), R"({"b":[1,"x"]})");
  EXPECT_EQ(written("c"), R"("d\n")");
  EXPECT_EQ(written("e"), "-0.0");
  EXPECT_EQ(written("f"), "null");
}

TEST(AppendCompact, KeepsEarlierOutput) {
  common::Bytes text;
  text.append("before ");
  appendCompact(text, emptyObject());
  EXPECT_EQ(text.view(), "before {}");
}

TEST(AppendPrettyQuoted, WritesALineForEachMemberAndElement) {
  EXPECT_EQ(pretty(R"({"a":1,"b":[true,null],"c":{"d":"e"}})"),
            "{\n"
            "  \"a\" : 1,\n"
            "  \"b\" : [\n"
            "    true,\n"
            "    null\n"
            "  ],\n"
            "  \"c\" : {\n"
            "    \"d\" : \"e\"\n"
            "  }\n"
            "}");
}

TEST(AppendPrettyQuoted, SortsMembersAtEveryLevel) {
  EXPECT_EQ(pretty(R"([{"b":{"z":1,"y":2},"a":3}])"),
            "[\n"
            "  {\n"
            "    \"a\" : 3,\n"
            "    \"b\" : {\n"
            "      \"y\" : 2,\n"
            "      \"z\" : 1\n"
            "    }\n"
            "  }\n"
            "]");
}

TEST(AppendPrettyQuoted, SortsByTheBytesOfTheNames) {
  EXPECT_EQ(pretty("{\"\xC3\xA9\":1,\"b\":2,\"B\":3,\"a10\":4,\"a9\":5,\"\":6}"),
            "{\n"
            "  \"\" : 6,\n"
            "  \"B\" : 3,\n"
            "  \"a10\" : 4,\n"
            "  \"a9\" : 5,\n"
            "  \"b\" : 2,\n"
            "  \"\xC3\xA9\" : 1\n"
            "}");
}

TEST(AppendPrettyQuoted, KeepsTheLastOfARepeatedName) {
  EXPECT_EQ(pretty(R"({"b":1,"a":2,"b":3})"), "{\n  \"a\" : 2,\n  \"b\" : 3\n}");
}

TEST(AppendPrettyQuoted, KeepsEmptyContainersOnOneLine) {
  EXPECT_EQ(pretty("{}"), "{}");
  EXPECT_EQ(pretty("[]"), "[]");
  EXPECT_EQ(pretty("[[],{}]"), "[\n  [],\n  {}\n]");
}

TEST(AppendPrettyQuoted, EscapesTwice) {
  EXPECT_EQ(prettyQuoted(R"(["a\nb"])"), R"("[\n  \"a\\nb\"\n]")");
  EXPECT_EQ(prettyQuoted(R"(["\"\\/"])"), R"("[\n  \"\\\"\\\\\\\/\"\n]")");
  EXPECT_EQ(prettyQuoted(R"(["\u0001\ud800"])"), R"("[\n  \"\\u0001\\ud800\"\n]")");
  EXPECT_EQ(prettyQuoted("[\"\\u00e9\xC3\xA9\"]"), "\"[\\n  \\\"\xC3\xA9\xC3\xA9\\\"\\n]\"");
}

TEST(AppendPrettyQuoted, WritesScalars) {
  const auto document = read(R"(["a/b",-1.0,true,null])");
  ASSERT_TRUE(document);
  std::string all;
  const Node* const end = document->root().node()->next();
  for (const Node* node = document->root().node() + 1; node != end; node = node->next()) {
    common::Bytes text;
    appendPrettyQuoted(text, Value(document->root().text(), node));
    all += std::string(text.view()) + ' ';
  }
  EXPECT_EQ(all, R"("\"a\\\/b\"" "-1.0" "true" "null" )");
}

TEST(AppendQuoted, EscapesQuotesSlashesAndControlCharacters) {
  EXPECT_EQ(stringLiteral(""), R"("")");
  EXPECT_EQ(stringLiteral("plain"), R"("plain")");
  EXPECT_EQ(stringLiteral("a/b\\c\"d"), R"("a\/b\\c\"d")");
  EXPECT_EQ(stringLiteral("\b\f\n\r\t\x01\x1F"), R"("\b\f\n\r\t\u0001\u001f")");
  EXPECT_EQ(stringLiteral(std::string_view("\0", 1)), R"("\u0000")");
  EXPECT_EQ(stringLiteral("\x7F\xC3\xA9\xF0\x9F\x98\x80"), "\"\x7F\xC3\xA9\xF0\x9F\x98\x80\"");
}

TEST(AppendQuoted, KeepsCharactersThatStartWithTheByteOfSurrogates) {
  EXPECT_EQ(stringLiteral("\xED\x80\x80\xED\x9F\xBF!"), "\"\xED\x80\x80\xED\x9F\xBF!\"");
}

TEST(AppendQuoted, WritesAnUnpairedSurrogateAsAnEscape) {
  for (const char* escapes :
       {R"("\ud800")", R"("a\udfffb")", R"("\udc00\ud800")", R"("\ud83d\ud83d")"}) {
    const std::string message = std::string("[") + escapes + "]";
    const auto document = read(message);
    ASSERT_TRUE(document);
    const Value string(document->root().text(), document->root().node() + 1);
    EXPECT_EQ(stringLiteral(*string.string()), escapes);
  }
}

TEST(AppendQuoted, CopiesLongRunsBetweenEscapes) {
  const std::string run(1000, 'x');
  EXPECT_EQ(stringLiteral(run + '\n' + run + '"' + run),
            '"' + run + "\\n" + run + "\\\"" + run + '"');
}

}  // namespace
}  // namespace json
