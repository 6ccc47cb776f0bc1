#include "json/escape.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "tests/unit/reference.h"

namespace json {
namespace {

template <Escaping escaping>
std::string written(char32_t character) {
  std::array<char, 16> room{};
  return {room.data(), writeCharacter<escaping>(room.data(), character)};
}

/// The literal of the reference without its quotes.
std::string literal(const std::string& text) {
  const std::string quoted = reference::literal(text);
  return quoted.substr(1, quoted.size() - 2);
}

bool isASurrogate(char32_t codePoint) {
  return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

TEST(WriteCharacter, EscapesAsciiLikeTheReference) {
  for (char32_t character = 0; character < 0x80; ++character) {
    const std::string once = literal(std::string(1, static_cast<char>(character)));
    EXPECT_EQ(written<Escaping::once>(character), once);
    EXPECT_EQ(written<Escaping::twice>(character), literal(once));
  }
}

TEST(WriteCharacter, WritesEveryOtherCodePointAsUtf8AndSurrogatesAsEscapes) {
  for (char32_t character = 0x80; character <= 0x10FFFF; ++character) {
    std::array<char, 16> expected{};
    if (isASurrogate(character)) {
      std::snprintf(expected.data(), expected.size(), "\\u%04x", static_cast<unsigned>(character));
    } else {
      utf8::append(character, expected.data());
    }
    ASSERT_EQ(written<Escaping::once>(character), expected.data());
    const std::string twice = (isASurrogate(character) ? "\\" : "") + std::string(expected.data());
    ASSERT_EQ(written<Escaping::twice>(character), twice);
  }
}

// The tables are made while compiling. Here the same functions run.
TEST(Escape, GivesTheSameAtRunTimeAsInTheTables) {
  for (std::size_t i = 0; i < escapedAscii<Escaping::once>.size(); ++i) {
    const auto character = static_cast<char>(i);
    const Escaped once = escapeOnce(character);
    const Escaped twice = escapeTwice(character);
    EXPECT_EQ(once.bytes, escapedAscii<Escaping::once>[i].bytes);
    EXPECT_EQ(once.size, escapedAscii<Escaping::once>[i].size);
    EXPECT_EQ(twice.bytes, escapedAscii<Escaping::twice>[i].bytes);
    EXPECT_EQ(twice.size, escapedAscii<Escaping::twice>[i].size);
  }
}

TEST(WriteCharacter, TouchesNoMoreThanTheLongestCharacter) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    std::array<char, 16> room{};
    room.fill('?');
    writeCharacter<Escaping::twice>(room.data(), character);
    ASSERT_EQ(room[longestCharacter], '?') << static_cast<unsigned>(character);
  }
}

}  // namespace
}  // namespace json
