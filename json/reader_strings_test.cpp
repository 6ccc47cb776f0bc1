#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "json/reader.h"
#include "tests/unit/reader_state.h"
#include "tests/unit/written.h"

namespace json {
namespace {

using State = Reader::State;

std::string inString(std::string_view bytes) {
  return "[\"" + std::string(bytes) + "\"]";
}

TEST(ReaderStrings, RejectsControlCharacters) {
  for (char byte = 0; byte < 0x20; ++byte) {
    EXPECT_EQ(state(inString(std::string(1, byte))), State::malformed) << static_cast<int>(byte);
    EXPECT_EQ(state(inString("\xC3\xA9" + std::string(1, byte))), State::malformed);
    EXPECT_EQ(state("{\"a" + std::string(1, byte) + "\":1}"), State::malformed);
  }
  EXPECT_EQ(state(inString("\x7F")), State::complete);
}

TEST(ReaderStrings, AcceptsEightShortEscapesAndUnicodeEscapes) {
  for (int value = 0; value < 256; ++value) {
    const char letter = static_cast<char>(value);
    const bool known =
        value != 0 && std::string_view("\"\\/bfnrt").find(letter) != std::string_view::npos;
    if (letter == 'u') continue;
    EXPECT_EQ(state(inString(std::string{'\\', letter})),
              known ? State::complete : State::malformed)
        << value;
  }
}

TEST(ReaderStrings, UnicodeEscapesNeedFourHexadecimalDigits) {
  for (const char* digits : {"0000", "ffff", "FFFF", "aBcD", "00e9", "19aF"}) {
    EXPECT_EQ(state(inString(std::string("\\u") + digits)), State::complete) << digits;
  }
  for (const char* digits : {"", "0", "000", "g000", "0g00", "00g0", "000g", "00 0", "+123", "-123",
                             "0x12", "{41}", "00\\n"}) {
    EXPECT_EQ(state(inString(std::string("\\u") + digits)), State::malformed) << digits;
  }
  EXPECT_EQ(state(inString("\\U0041")), State::malformed);
}

TEST(ReaderStrings, AcceptsEscapesOfUnpairedSurrogates) {
  for (const char* escapes : {"\\ud800", "\\udfff", "\\udc00\\ud800", "\\ud800\\ud800",
                              R"(\ud800\u0041)", R"(\ud800\n)", R"(\ud800x)", R"(\ud800\\u0041)"}) {
    EXPECT_EQ(state(inString(escapes)), State::complete) << escapes;
  }
}

TEST(ReaderStrings, RejectsIllFormedUtf8) {
  for (const char* bytes : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF",
                            "\xED\x9F\xBF", "\xEE\x80\x80", "a\xC3\xA9\xC3\xA9z"}) {
    EXPECT_EQ(state(inString(bytes)), State::complete);
  }
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x80\x80", "\xE2\x82",
        "\xE2(\xAC", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x9F\x98",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xFE", "\xC3\xA9\xA9"}) {
    EXPECT_EQ(state(inString(bytes)), State::malformed) << testing::PrintToString(bytes);
    EXPECT_EQ(state(inString(std::string(40, 'a') + bytes)), State::malformed);
    EXPECT_EQ(state("{\"" + std::string(bytes) + "\":1}"), State::malformed);
  }
}

TEST(ReaderStrings, ByteOrderMarkInAStringIsACharacter) {
  EXPECT_EQ(compact("[\"\xEF\xBB\xBF\"]"), "[\"\xEF\xBB\xBF\"]");
}

}  // namespace
}  // namespace json
