#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace json {

/// An escape in a JSON string, such as `\n` or `\u00e9`.
struct Escape {
  char32_t codePoint;     ///< what it stands for; a surrogate if it is an unpaired one
  std::ptrdiff_t length;  ///< its bytes, backslash included; 12 for a pair of surrogates
};

/// Reads the escape at `from`, which points to the backslash of a well-formed escape in a
/// string that ends at `end`.
Escape readEscape(const char* from, const char* end);

/// Of each byte, whether a backslash before it makes the two a whole escape.
inline constexpr auto shortEscapes = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("\"\\/bfnrt"))
    table.at(static_cast<unsigned char>(c)) = true;
  return table;
}();

/// Whether a backslash and this letter are a whole escape.
constexpr bool isShortEscape(char letter) {
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
