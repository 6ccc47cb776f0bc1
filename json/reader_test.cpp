#include "json/reader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/unit/reader_state.h"
#include "tests/unit/written.h"

namespace json {
namespace {

using State = Reader::State;

std::string nested(std::size_t depth, std::string_view open, std::string_view close) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += open;
  for (std::size_t i = 0; i < depth; ++i) text += close;
  return text;
}

TEST(Reader, ReadsObjectsAndArraysAtTheTop) {
  for (const char* text : {"{}", "[]", "[[]]", R"({"a":{}})", R"([1,"a",true,false,null,{},[]])"}) {
    EXPECT_EQ(state(text), State::complete) << text;
  }
}

TEST(Reader, RejectsOtherValuesAtTheTop) {
  for (const char* text : {"1", "-", R"("a")", "true", "false", "null", "x", ",", "]", "}", ":"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, IsIncompleteBeforeTheMessageStarts) {
  EXPECT_EQ(state(""), State::incomplete);
  EXPECT_EQ(state(" \t\r\n"), State::incomplete);
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(read("   "));
}

TEST(Reader, AcceptsWhiteSpaceBetweenTokens) {
  EXPECT_EQ(compact(" \t\r\n{ \"a\" : [ 1 , 2 ] , \"b\" : { } , \"c\" : [ ] } \t\r\n"),
            R"({"a":[1,2],"b":{},"c":[]})");
}

TEST(Reader, RejectsOtherKindsOfSpace) {
  for (const char* text :
       {"\f[]", "\v[]", "[\f]", "[1\v]", "\xC2\xA0[]", "[]\xE2\x80\xA8", "[]\b"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
  EXPECT_EQ(state(std::string_view("[]\0", 3)), State::malformed);
  EXPECT_EQ(state(std::string_view("\0[]", 3)), State::malformed);
}

TEST(Reader, AcceptsOneByteOrderMarkAtTheStart) {
  EXPECT_EQ(compact("\xEF\xBB\xBF{}"), "{}");
  EXPECT_EQ(compact("\xEF\xBB\xBF [1]"), "[1]");
  for (const char* text : {"\xEF\xBB\xBF\xEF\xBB\xBF{}", " \xEF\xBB\xBF{}", "{}\xEF\xBB\xBF",
                           "{\xEF\xBB\xBF}", "\xEF\xBB{}", "\xEF{}", "\xFE\xFF{}"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsAnythingButWhiteSpaceAfterTheMessage) {
  for (const char* text : {"{}x", "{} {}", "[],", "[]]", "{}}", "[] 1", "{}\"", "[]["}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsMisplacedCommas) {
  for (const char* text : {"[,]", "[1,]", "[,1]", "[1,,2]", "[1 2]", "{,}", R"({"a":1,})",
                           R"({,"a":1})", R"({"a":1,,"b":2})", R"({"a":1 "b":2})", R"([1;2])"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsMembersWithoutNameColonOrValue) {
  for (const char* text :
       {R"({"a"})", R"({"a":})", R"({:1})", R"({"a",1})", R"({"a"::1})", "{1:2}", "{a:1}",
        "{true:1}", "{null:1}", R"({'a':1})", R"({"a":1:2})", R"({[]:1})", R"(["a":1])"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsMismatchedBrackets) {
  for (const char* text : {"[}", "{]", "[1}", R"({"a":1])", "[[]}", R"({"a":[})"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsOtherSpellingsOfLiterals) {
  for (const char* text :
       {"[True]", "[TRUE]", "[tru]", "[truee]", "[fals ]", "[nul,1]", "[nulll]", "[NaN]",
        "[Infinity]", "[undefined]", "[t]", "[n]", "[f1]", "[truefalse]"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsMalformedNumbersAndKeepsTheOthers) {
  for (const char* text : {"[01]", "[-]", "[+1]", "[.5]", "[1.]", "[1e]", "[1e+]", "[-01]",
                           "[1.2.3]", "[0x10]", "[1e5.5]", "[--1]", "[1a]", "[- 1]", "[1 .5]",
                           "[-Infinity]", R"({"a":01})", R"({"a":1.})"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
  EXPECT_EQ(compact("[0,-0,1.50,1E+2,1e-07,123456789012345678901234567890,1e999]"),
            "[0,-0,1.50,1E+2,1e-07,123456789012345678901234567890,1e999]");
}

TEST(Reader, RejectsComments) {
  for (const char* text : {"[1/*x*/]", "[1]//x", "/*x*/[]", "[//\n]", "#\n[]"}) {
    EXPECT_EQ(state(text), State::malformed) << text;
  }
}

TEST(Reader, RejectsNonAsciiOutsideStrings) {
  EXPECT_EQ(state("[\xC3\xA9]"), State::malformed);
  EXPECT_EQ(state("{}\xC3\xA9"), State::malformed);
  EXPECT_EQ(state("\xC3\xA9"), State::malformed);
}

TEST(Reader, AcceptsNestingOf512AndRejects513) {
  EXPECT_EQ(deepestNesting, 512U);
  EXPECT_EQ(state(nested(512, "[", "]")), State::complete);
  EXPECT_EQ(state(nested(513, "[", "]")), State::malformed);
  EXPECT_EQ(state(nested(511, R"({"a":)", "}").insert(511UZ * 5, "{}")), State::complete);
  EXPECT_EQ(state(nested(512, R"({"a":)", "}").insert(512UZ * 5, "{}")), State::malformed);
  EXPECT_EQ(state(nested(256, R"([{"a":)", "}]").insert(256UZ * 6, "1")), State::complete);
}

TEST(Reader, DoesNotCountSiblingsAsNesting) {
  const std::string deep = nested(511, "[", "]");
  EXPECT_EQ(state("[" + deep + "," + deep + "," + deep + "]"), State::complete);
}

TEST(Reader, RejectsMillionsOfLevels) {
  EXPECT_EQ(state(std::string(10'000'000, '[')), State::malformed);
}

TEST(Reader, EveryPrefixOfAMessageIsIncomplete) {
  constexpr std::string_view text =
      "\xEF\xBB\xBF {\"a\\u00e9\\n\":[true,false,null,-1.5e+3,{},\"\xE2\x82\xAC/\\ud83d\\ude00\"]}";
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(state(text.substr(0, length)), State::incomplete) << text.substr(0, length);
  }
  EXPECT_EQ(state(text), State::complete);
}

TEST(Reader, ContinuesInALongerTextAtAnotherAddress) {
  const std::string text = R"({"a":[1.25,"b\u0041\/c",{"d":true}],"e":null} )";
  Reader reader;
  for (std::size_t length = 0; length < text.size() - 2; ++length) {
    const std::string moved = text.substr(0, length);
    ASSERT_EQ(reader.read(moved), State::incomplete) << moved;
  }
  ASSERT_EQ(reader.read(text), State::complete);
  const Document document = std::move(reader).take();
  EXPECT_EQ(document.root().member("a")->node()->descendants(), 5U);
  EXPECT_EQ(document.root().member("e")->kind(), Kind::null);
}

TEST(Reader, StaysMalformed) {
  Reader reader;
  EXPECT_EQ(reader.read("[1,,"), State::malformed);
  EXPECT_EQ(reader.read("[1,,2]"), State::malformed);
  EXPECT_EQ(reader.state(), State::malformed);
}

TEST(Reader, RejectsTextThatArrivesAfterACompleteMessage) {
  Reader reader;
  EXPECT_EQ(reader.read("[1]"), State::complete);
  EXPECT_EQ(reader.read("[1] \n"), State::complete);
  EXPECT_EQ(reader.read("[1] \n["), State::malformed);
}

}  // namespace
}  // namespace json
