#pragma once

#include <utf8.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "json/unescape.h"

namespace json {

/// How often a character is escaped: once in a string of a message, twice in JSON text that is
/// itself the content of a string.
enum class Escaping : std::uint8_t { once, twice };

/// An ASCII character as it is written in a string.
struct Escaped {
  std::array<char, 7> bytes{};
  std::uint8_t size = 0;

  constexpr void append(char byte) { bytes.at(size++) = byte; }
};

/// The most bytes that writing one character may touch.
inline constexpr std::size_t longestCharacter = sizeof(Escaped);

inline constexpr std::string_view hexDigits = "0123456789abcdef";

constexpr Escaped escapeOnce(char character) {
  Escaped escaped;
  if (character == '"' || character == '\\' || character == '/') {
    escaped.append('\\');
    escaped.append(character);
  } else if (static_cast<unsigned char>(character) >= ' ') {
    escaped.append(character);
  } else {
    escaped.append('\\');
    for (const char letter : {'b', 'f', 'n', 'r', 't'}) {
      if (shortEscape(letter) != character) continue;
      escaped.append(letter);
      return escaped;
    }
    const auto unit = static_cast<unsigned char>(character);
    for (const char byte : {'u', '0', '0', hexDigits[unit >> 4U], hexDigits[unit & 0xFU]}) {
      escaped.append(byte);
    }
  }
  return escaped;
}

constexpr Escaped escapeTwice(char character) {
  Escaped twice;
  const Escaped once = escapeOnce(character);
  for (std::size_t i = 0; i < once.size; ++i) {
    const Escaped escaped = escapeOnce(once.bytes.at(i));
    for (std::size_t k = 0; k < escaped.size; ++k) twice.append(escaped.bytes.at(k));
  }
  return twice;
}

template <Escaping escaping>
inline constexpr auto escapedAscii = [] {
  std::array<Escaped, 128> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const char character = static_cast<char>(i);
    table.at(i) = escaping == Escaping::once ? escapeOnce(character) : escapeTwice(character);
  }
  return table;
}();

/// Writes one ASCII character of a string and returns the end. Needs room for longestCharacter.
template <Escaping escaping>
char* writeAscii(char* to, char character) {
  const Escaped& escaped = escapedAscii<escaping>[static_cast<unsigned char>(character)];
  std::memcpy(to, escaped.bytes.data(), escaped.bytes.size());
  return to + escaped.size;
}

/// Writes one character of a string and returns the end. Needs room for longestCharacter. An
/// unpaired surrogate becomes an escape.
template <Escaping escaping>
char* writeCharacter(char* to, char32_t character) {
  if (character < 0x80) return writeAscii<escaping>(to, static_cast<char>(character));
  if (!isSurrogate(character)) return utf8::unchecked::append(character, to);
  constexpr std::string_view start = escaping == Escaping::once ? "\\u" : "\\\\u";
  to = std::ranges::copy(start, to).out;
  for (const unsigned shift : {12U, 8U, 4U, 0U}) *to++ = hexDigits[character >> shift & 0xFU];
  return to;
}

}  // namespace json
