#include "json/escape.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include <nlohmann/json.hpp>

namespace json {
namespace {

template <Escaping escaping>
std::string written(char32_t character) {
  std::array<char, 16> room{};
  return {room.data(), writeCharacter<escaping>(room.data(), character)};
}

/// The reference's literal without its quotes. It does not escape slashes.
std::string literal(const std::string& text) {
  std::string dumped = nlohmann::json(text).dump();
  for (std::size_t at = dumped.find('/'); at != std::string::npos; at = dumped.find('/', at + 2)) {
    dumped.insert(at, 1, '\\');
  }
  return dumped.substr(1, dumped.size() - 2);
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
    if (isSurrogate(character)) {
      std::snprintf(expected.data(), expected.size(), "\\u%04x", static_cast<unsigned>(character));
    } else {
      utf8::append(character, expected.data());
    }
    ASSERT_EQ(written<Escaping::once>(character), expected.data());
    const std::string twice = (isSurrogate(character) ? "\\" : "") + std::string(expected.data());
    ASSERT_EQ(written<Escaping::twice>(character), twice);
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
