#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "json/escape.h"
#include "json/utf8.h"

namespace json {

/// How the characters that JSON gives a meaning are written: in a message itself.
struct Plain {
  static constexpr std::string_view quote = "\"";
  static constexpr std::string_view backslash = "\\";
  static constexpr std::string_view slash = "/";
  static constexpr std::string_view newLine = "\n";
};

/// The same in JSON text which itself stands in a string of a message, and so is escaped
/// once more.
struct Quoted {
  static constexpr std::string_view quote = "\\\"";
  static constexpr std::string_view backslash = "\\\\";
  static constexpr std::string_view slash = "\\/";
  static constexpr std::string_view newLine = "\\n";
};

/// The bytes of a short escape; kept at one size, so that copying it takes no loop.
struct ShortEscape {
  std::array<char, 4> bytes;
  std::size_t size;
};

/// The most bytes that one character takes in any spelling.
inline constexpr std::size_t longestCharacter = 8;

/// Writes `\u` and four hexadecimal digits, and returns the place behind them.
template <typename Spelling>
char* writeUnicodeEscape(char* to, char32_t unit) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::memcpy(to, Spelling::backslash.data(), Spelling::backslash.size());
  to += Spelling::backslash.size();
  *to++ = 'u';
  for (const unsigned shift : {12U, 8U, 4U, 0U}) *to++ = digits[unit >> shift & 0xFU];
  return to;
}

/// Writes a short escape, such as `\n`, by the letter behind its backslash, and returns the
/// place behind it. There must be room for longestCharacter.
template <typename Spelling>
char* writeShortEscape(char* to, char letter) {
  static constexpr auto escapes = [] {
    std::array<ShortEscape, 128> table{};
    for (const char c : std::string_view("\"\\/bfnrt")) {
      ShortEscape& escape = table.at(static_cast<std::size_t>(c));
      const auto add = [&](std::string_view bytes) {
        for (const char byte : bytes) escape.bytes.at(escape.size++) = byte;
      };
      add(Spelling::backslash);
      add(c == '"'    ? Spelling::quote
          : c == '\\' ? Spelling::backslash
          : c == '/'  ? Spelling::slash
                      : std::string_view(&c, 1));
    }
    return table;
  }();
  const ShortEscape& escape = escapes[static_cast<unsigned char>(letter)];
  std::memcpy(to, escape.bytes.data(), escape.bytes.size());
  return to + escape.size;
}

/// Writes one character of a string, escaped where the platform's writer escapes it, and
/// returns the place behind it. There must be room for longestCharacter.
template <typename Spelling>
char* writeCharacter(char* to, char32_t character) {
  switch (character) {
    case '"':
    case '\\':
    case '/': return writeShortEscape<Spelling>(to, static_cast<char>(character));
    case '\b': return writeShortEscape<Spelling>(to, 'b');
    case '\f': return writeShortEscape<Spelling>(to, 'f');
    case '\n': return writeShortEscape<Spelling>(to, 'n');
    case '\r': return writeShortEscape<Spelling>(to, 'r');
    case '\t': return writeShortEscape<Spelling>(to, 't');
    default: break;
  }
  if (character < 0x20 || isSurrogate(character))
    return writeUnicodeEscape<Spelling>(to, character);
  return writeUtf8(to, character);
}

}  // namespace json
