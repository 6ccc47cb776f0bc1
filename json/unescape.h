#pragma once

#include <array>
#include <cstddef>

namespace json {

/// An escape in a JSON string, such as `\n` or `\u00e9`.
struct Escape {
  char32_t codePoint;     ///< may be an unpaired surrogate
  std::ptrdiff_t length;  ///< bytes, backslash included; 12 for a pair of surrogates
};

/// Reads the well-formed escape at `from`, in a string that ends at `end`.
Escape readEscape(const char* from, const char* end);

/// For each letter, the character that its short escape means, such as a line feed for `\n`; 0 if
/// the letter has none.
inline constexpr auto shortEscapes = [] {
  std::array<char, 256> characters{};
  characters['"'] = '"';
  characters['\\'] = '\\';
  characters['/'] = '/';
  characters['b'] = '\b';
  characters['f'] = '\f';
  characters['n'] = '\n';
  characters['r'] = '\r';
  characters['t'] = '\t';
  return characters;
}();

constexpr char shortEscape(char letter) {
  return shortEscapes[static_cast<unsigned char>(letter)];
}

/// The value of a hexadecimal digit, or -1.
constexpr int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

constexpr bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}
constexpr bool isSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xE000;
}

}  // namespace json
